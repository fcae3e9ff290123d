#include <QApplication>

#include "support/TestEnvironment.h"

#include "gui/ApplicationFonts.h"
#include "gui/pages/FirmwareUpdatePage.h"
#include "gui/pages/PerformanceCheckPage.h"
#include "gui/widgets/ParamValueWidget.h"
#include "gui/widgets/ProgressBar.h"
#include "logger/Logger.h"
#include "settings/SettingsManager.h"
#include "message/Payload.h"
#include "performance/PerformanceCheck.h"
#include "performance/PerformanceResult.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"
#include "update/FirmwareUpdate.h"

#include "DiskPerformance.pb.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

using namespace Velmora;
using Velmora::Gui::ParamValueWidget;
using Velmora::Gui::ProgressBar;
using Velmora::Performance::PerformanceCheck;
using Velmora::Performance::PerformanceResult;
using Velmora::System::Drive;

Q_DECLARE_METATYPE(PerformanceCheck::TestStatus)

namespace {

Drive* makeDrive(int id, const QString& model, const QString& firmware = QStringLiteral("EXFM61.3"))
{
    return new Drive(id, model, QStringLiteral("SN%1").arg(id), QString(), firmware, System::Bytes(qint64(480) << 30),
        4, 4, true, QStringLiteral("SATA"));
}

template <typename T>
T* child(QWidget& page, const char* name)
{
    T* widget = page.findChild<T*>(QString::fromLatin1(name));
    if (!widget)
        qWarning("no child %s", name);
    return widget;
}

QString value(QWidget& page, const char* name)
{
    return child<ParamValueWidget>(page, name)->value();
}

QString text(QWidget& page, const char* name)
{
    return child<QLabel>(page, name)->text();
}

int barValue(QWidget& page, const char* name)
{
    return child<ProgressBar>(page, name)->value();
}

QByteArray benchmarkAnswer(int driveId, double readBytesPerSecond, double writeBytesPerSecond)
{
    Message::DiskPerformance answer;
    answer.set_code(static_cast<Message::Code>(0));
    answer.set_driveid(static_cast<quint32>(driveId));
    answer.set_readspeed(readBytesPerSecond);
    answer.set_writespeed(writeBytesPerSecond);
    return Message::toPayload(answer);
}

// A machine with drives, the speed test wired to it on a clock the test moves, and its page.
struct PerformanceRig {
    PerformanceRig()
    {
        system.addDrive(makeDrive(1, QStringLiteral("BRANTEL SSD 480G")));
        system.setCurrentDrive(1);
        check.setClock([this] { return now; });
    }

    // A round of the service lasts `seconds` and reports these speeds, in bytes per second.
    void round(int seconds, double read, double write)
    {
        now = now.addSecs(seconds);
        check.handleMessage(Message::Message::DiskBenchmarkResponse, benchmarkAnswer(1, read, write));
        QCoreApplication::processEvents();
    }

    void click(const char* button) { QTest::mouseClick(child<QPushButton>(page, button), Qt::LeftButton); }

    System::System system;
    PerformanceCheck check{&system};
    Gui::PerformanceCheckPage page{&check};
    QDateTime now{QDate(2026, 11, 23), QTime(12, 0), Qt::UTC};
};

// A date and time of analysis as the firmware page writes it, or an invalid one.
QDateTime analysisTime(const QString& text)
{
    return QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace

class TestGuiDrivePages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void fullTestShowsTheBestRound();

    void firmwareStates_data();
    void firmwareStates();

};

void TestGuiDrivePages::initTestCase()
{
    Gui::registerApplicationFonts();
    Logger::setConsoleEnabled(false);
}

void TestGuiDrivePages::init()
{
    Settings::SettingsManager::clear();
    System::SupportedDrivesManager::instance()->setSupportedDrives({});
}

void TestGuiDrivePages::cleanup()
{
    System::SupportedDrivesManager::instance()->setSupportedDrives({});
}

// ---------------------------------------------------------------------------------------------
// SMART page

// ---------------------------------------------------------------------------------------------
// Performance page

void TestGuiDrivePages::fullTestShowsTheBestRound()
{
    PerformanceRig rig;
    int sent = 0;
    connect(&rig.check, qOverload<Message::Message::MessageType, QByteArray>(&PerformanceCheck::sendMessage), this,
        [&sent](Message::Message::MessageType type) { sent += type == Message::Message::DiskBenchmarkRequest; });

    rig.click("toggleTest");
    QCOMPARE(sent, 1);
    QCOMPARE(text(rig.page, "testStatus"), QStringLiteral("RUNNING"));
    QCOMPARE(child<QPushButton>(rig.page, "toggleTest")->text(), QStringLiteral("CANCEL"));
    QCOMPARE(text(rig.page, "testProgress"), QStringLiteral("0%"));
    // A test under way shows no figures until its end.
    QCOMPARE(text(rig.page, "readResult"), QString());
    QCOMPARE(text(rig.page, "writeResult"), QString());

    rig.round(8, 300e6, 200e6);
    QCOMPARE(text(rig.page, "testProgress"), QStringLiteral("10%"));
    QCOMPARE(barValue(rig.page, "progressBar"), 10);
    QCOMPARE(text(rig.page, "elapsedTime"), QStringLiteral("0:08"));
    QCOMPARE(text(rig.page, "remainingTime"), QStringLiteral("1:12"));
    QCOMPARE(text(rig.page, "readResult"), QString());

    for (int i = 1; i < PerformanceCheck::Rounds; ++i) {
        // The fifth round is the fastest; the rest fall back.
        const double boost = i == 4 ? 22.5e6 : 0.0;
        rig.round(8, 300e6 + boost, 200e6 + boost + 0.126e6);
    }
    QCOMPARE(sent, int(PerformanceCheck::Rounds));
    QCOMPARE(text(rig.page, "testStatus"), QStringLiteral("TEST FINISHED"));
    QCOMPARE(barValue(rig.page, "progressBar"), 100);
    QCOMPARE(text(rig.page, "testProgress"), QStringLiteral("100%"));
    QCOMPARE(text(rig.page, "elapsedTime"), QStringLiteral("1:20"));
    QCOMPARE(text(rig.page, "remainingTime"), QStringLiteral("0:00"));
    QCOMPARE(child<QPushButton>(rig.page, "toggleTest")->text(), QStringLiteral("START"));
    QCOMPARE(text(rig.page, "readResult"), QStringLiteral("322.50 MB/s"));
    QCOMPARE(text(rig.page, "writeResult"), QStringLiteral("222.63 MB/s"));
}

// ---------------------------------------------------------------------------------------------
// Firmware page

void TestGuiDrivePages::firmwareStates_data()
{
    QTest::addColumn<QString>("model");  // empty: no drive at all
    QTest::addColumn<QString>("firmware");
    QTest::addColumn<QString>("newest");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("modelText");
    QTest::addColumn<QString>("firmwareText");
    QTest::addColumn<QString>("newestText");
    QTest::addColumn<bool>("analysed");  // a date and time rather than "NO DATA"
    QTest::addColumn<bool>("updateEnabled");

    const QString ours = QStringLiteral("BRANTEL SSD 480G");
    const QString url = QStringLiteral("https://downloads.example.test/firmware/S9FM02.3");
    const QString none = QStringLiteral("NO AVAILABLE UPDATES");

    QTest::newRow("no drive") << QString() << QString() << QString() << QString() << "NOT AVAILABLE"
                              << "NOT AVAILABLE" << none << false << false;
    QTest::newRow("maker's drive, same version with an address")
        << ours << "S9FM02.1" << "S9FM02.1" << url << ours << "S9FM02.1" << "S9FM02.1" << true << false;
    QTest::newRow("maker's drive, newer version with an address")
        << ours << "S9FM02.1" << "S9FM02.3" << url << ours << "S9FM02.1" << "S9FM02.3" << true << true;
    QTest::newRow("maker's drive, newer version without an address")
        << ours << "S9FM02.1" << "S9FM02.3" << QString() << ours << "S9FM02.1" << "S9FM02.3" << true << false;
}

void TestGuiDrivePages::firmwareStates()
{
    QFETCH(QString, model);
    QFETCH(QString, firmware);
    QFETCH(QString, newest);
    QFETCH(QString, url);
    QFETCH(QString, modelText);
    QFETCH(QString, firmwareText);
    QFETCH(QString, newestText);
    QFETCH(bool, analysed);
    QFETCH(bool, updateEnabled);

    System::SupportedDrivesManager::instance()->setSupportedDrives(
        {System::SupportedDrive(QStringLiteral("SSDX"), QStringLiteral("XF"), QStringLiteral("B"))});
    System::System system;
    Update::FirmwareUpdate firmwareUpdate(&system, nullptr, nullptr);
    if (!model.isEmpty()) {
        // The page first shows a drive with an update ready, so that nothing passes for being
        // left over.
        Drive* first = makeDrive(1, QStringLiteral("BRANTEL SSD 240G"), QStringLiteral("A1"));
        first->setNewestFirmwareVersion(QStringLiteral("A2"));
        first->setNewestFirmwareUrl(QStringLiteral("https://downloads.example.test/A2"));
        system.addDrive(first);
        system.setCurrentDrive(1);
    }
    const QDateTime before = QDateTime::currentDateTime().addMSecs(-1000);
    Gui::FirmwareUpdatePage page(&firmwareUpdate, &system);
    if (!model.isEmpty()) {
        QVERIFY(child<QPushButton>(page, "firmwareUpdatePushButton")->isEnabled());
        system.addDrive(makeDrive(2, model, firmware));
        system.setCurrentDrive(2);
        // The answer of the back-end arrives on the drive.
        system.drive(2)->setNewestFirmwareUrl(url);
        system.drive(2)->setNewestFirmwareVersion(newest);
    }
    const QDateTime after = QDateTime::currentDateTime();

    QCOMPARE(value(page, "driveModel"), modelText);
    QCOMPARE(value(page, "currentFVersion"), firmwareText);
    QCOMPARE(value(page, "newestFVersion"), newestText);
    QCOMPARE(child<QPushButton>(page, "firmwareUpdatePushButton")->isEnabled(), updateEnabled);
    const QString time = text(page, "label_analyzedTime");
    if (analysed) {
        const QDateTime shown = analysisTime(time);
        QVERIFY2(shown.isValid(), qPrintable(time));
        QVERIFY2(shown >= before && shown <= after, qPrintable(time));
    } else {
        QCOMPARE(time, QStringLiteral("NO DATA"));
    }
}

KESTRAVIN_GUI_TEST_SUITE(TestGuiDrivePages)
#include "tst_gui_drivepages.moc"
