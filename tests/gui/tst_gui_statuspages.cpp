#include <QApplication>

#include "support/TestEnvironment.h"

#include "gui/ApplicationFonts.h"
#include "gui/GuiResources.h"
#include "gui/pages/DriveHealthInfoWidget.h"
#include "gui/pages/SSDStatusPage.h"
#include "system/Drive.h"
#include "system/DriveHealthStatus.h"
#include "system/FileCategories.h"
#include "system/System.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

using namespace Velmora;

namespace {

// Which of the four lamp pictures a label shows: "none" without a picture, "unknown" for any other.
QString ledShown(const QLabel* led)
{
    const QPixmap shown = led->pixmap(Qt::ReturnByValue);
    if (shown.isNull())
        return QStringLiteral("none");
    const QImage image = shown.toImage();
    for (const QString& name : {QStringLiteral("inactive"), QStringLiteral("good"), QStringLiteral("OK"),
             QStringLiteral("bad")}) {
        if (QPixmap(QStringLiteral(":/icons/LED_") + name).toImage() == image)
            return name;
    }
    return QStringLiteral("unknown");
}

// A report of the file-type scan as the system manager takes it in: the sizes first, then the state.
void report(System::FileCategories* categories, int status)
{
    categories->setSizes({ { System::FileCategory::Video, status ? 4096 : 0 } });
    categories->setStatus(status, status / 2.0);
}

} // namespace

// The drive health dialog: one lamp and one description per rule, for the current drive.
class TestGuiStatusPages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        Gui::registerApplicationFonts();
        Gui::initGuiResources();
    }
    void healthDialogRows_data();
    void healthDialogRows();
    void reloadComesBackWhenTheScanEnds_data();
    void reloadComesBackWhenTheScanEnds();
};

void TestGuiStatusPages::healthDialogRows_data()
{
    QTest::addColumn<System::DriveIssueType>("issue");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("ledName");
    QTest::addColumn<QString>("led");
    QTest::addColumn<QString>("description");

    const QVariant slowPort = QVariant::fromValue(System::SATASpeedCapabilities{4, 2});
    const QVariant fullSpeed = QVariant::fromValue(System::SATASpeedCapabilities{4, 4});
    QTest::newRow("free space, severity 0") << System::FreeSpace << QVariant(950.0) << "FreeSpaceStatusLED" << "bad"
                                            << "LESS THAN 10% OF FREE DISK SPACE LEFT.";
    QTest::newRow("free space, severity 1") << System::FreeSpace << QVariant(850.0) << "FreeSpaceStatusLED" << "OK"
                                            << "LESS THAN 20% OF FREE DISK SPACE LEFT.";
    QTest::newRow("life remaining, severity 0") << System::LifeRemaining << QVariant(9u) << "LifeRemainingStatusLED" << "bad"
                                                << "LESS THAN 10% OF REMAINING DISK LIFE LEFT.";
    QTest::newRow("life remaining, severity 1") << System::LifeRemaining << QVariant(69u) << "LifeRemainingStatusLED" << "OK"
                                                << "LESS THAN 70% OF REMAINING DISK LIFE LEFT.";
    QTest::newRow("life remaining, severity 2") << System::LifeRemaining << QVariant(70u) << "LifeRemainingStatusLED" << "good" << "";
    QTest::newRow("SATA speed, severity 0") << System::SATASpeedLimit << slowPort << "SataSpeedStatusLED" << "bad"
                                            << "DRIVE CAN WORK BETTER IF CONNECTED TO FASTER SATA CONTROLLER.";
    QTest::newRow("firmware, severity 1") << System::FirmwareUpdate << QVariant(true) << "FirmwareUpdateStatusLED" << "OK" << "FIRMWARE UPDATE AVAILABLE FOR DRIVE.";
}

void TestGuiStatusPages::healthDialogRows()
{
    QFETCH(System::DriveIssueType, issue);
    QFETCH(QVariant, value);
    QFETCH(QString, ledName);
    QFETCH(QString, led);
    QFETCH(QString, description);

    System::System system;
    auto* drive = new System::Drive(1, QStringLiteral("Brantel S1"), QStringLiteral("SN1"), QString(), QStringLiteral("FW1"),
        System::Bytes(qint64(100) << 30), 4, 4, true, QStringLiteral("SATA"));
    system.addDrive(drive);
    system.setCurrentDrive(1);
    Gui::DriveHealthInfoWidget dialog(&system);
    // A bad state first, so that a good row must have been redrawn.
    drive->healthStatus()->setIssueValue(System::LifeRemaining, 1u);
    drive->healthStatus()->setIssueValue(System::FirmwareUpdate, true);
    drive->healthStatus()->setIssueValue(System::FreeSpace, 999.0);
    drive->healthStatus()->setIssueValue(System::SATASpeedLimit, QVariant::fromValue(System::SATASpeedCapabilities{4, 1}));
    drive->healthStatus()->setIssueValue(System::LifeRemaining, 100u);
    drive->healthStatus()->setIssueValue(System::FirmwareUpdate, false);
    drive->healthStatus()->setIssueValue(System::FreeSpace, 0.0);
    drive->healthStatus()->setIssueValue(System::SATASpeedLimit, QVariant::fromValue(System::SATASpeedCapabilities{}));

    drive->healthStatus()->setIssueValue(issue, value);

    const QStringList rows = {"FreeSpaceStatusLED", "LifeRemainingStatusLED", "BadSectorsStatusLED",
        "SataSpeedStatusLED", "FirmwareUpdateStatusLED"};
    const QStringList descriptions = {"label_descFreeSpace", "label_descLifeRemain", "label_descBadSector",
        "label_descSataSpeed", "label_descFirmware"};
    for (int i = 0; i < rows.size(); ++i) {
        const bool tested = rows.at(i) == ledName;
        QCOMPARE(ledShown(dialog.findChild<QLabel*>(rows.at(i))), tested ? led : QStringLiteral("good"));
        const auto* label = dialog.findChild<QLabel*>(descriptions.at(i));
        QCOMPARE(label->text(), tested ? description : QString());
        QCOMPARE(label->isVisibleTo(&dialog), tested && !description.isEmpty());
    }
}

void TestGuiStatusPages::reloadComesBackWhenTheScanEnds_data()
{
    using namespace System::FileCategoryStatus;
    QTest::addColumn<int>("before");
    QTest::addColumn<QList<int>>("answer");
    QTest::newRow("a single finished report") << int(Complete) << QList<int> { Complete };
    QTest::newRow("progress, then finished") << int(Complete) << QList<int> { Scanning, Scanning, Complete };
    QTest::newRow("scan gone") << int(Complete) << QList<int> { NotScanned };
    QTest::newRow("running scan stopped first") << int(Scanning) << QList<int> { NotScanned, Scanning, Complete };
}

void TestGuiStatusPages::reloadComesBackWhenTheScanEnds()
{
    QFETCH(int, before);
    QFETCH(QList<int>, answer);
    System::System system;
    auto* drive = new System::Drive(1, QStringLiteral("Brantel S1"), QStringLiteral("SN1"), QString(), QStringLiteral("FW1"),
        System::Bytes(qint64(100) << 30), 4, 4, true, QStringLiteral("SATA"));
    system.addDrive(drive);
    system.setCurrentDrive(1);
    report(drive->fileCategories(), before);
    Gui::SSDStatusPage page(&system);
    auto* reload = page.findChild<QPushButton*>(QStringLiteral("reload_button"));

    reload->click();
    for (int i = 0; i < answer.size(); ++i) {
        QVERIFY(!reload->isEnabled());
        report(drive->fileCategories(), answer.at(i));
        QCoreApplication::processEvents();
    }
    QVERIFY(reload->isEnabled());
}

KESTRAVIN_GUI_TEST_SUITE(TestGuiStatusPages)
#include "tst_gui_statuspages.moc"
