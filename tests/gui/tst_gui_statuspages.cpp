#include <QApplication>

#include "support/TestEnvironment.h"
#include "WidgetShots.h"

#include "gui/ApplicationFonts.h"
#include "gui/pages/DriveHealthInfoWidget.h"
#include "gui/pages/HomePage.h"
#include "gui/pages/SSDStatusPage.h"
#include "gui/GuiResources.h"
#include "gui/pages/StatusLed.h"
#include "gui/widgets/Arc.h"
#include "gui/widgets/GraphicsPieChart.h"
#include "gui/widgets/ParamValueWidget.h"
#include "gui/widgets/RoundProgressBar.h"
#include "gui/widgets/SmoothEllipseItem.h"
#include "settings/SettingsManager.h"
#include "system/Bytes.h"
#include "system/Drive.h"
#include "system/DriveHealthStatus.h"
#include "system/FileCategories.h"
#include "system/Partition.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include "FileTypeStructure.pb.h"

#include <QComboBox>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QLabel>
#include <QLayout>
#include <QLocale>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimeLine>

using namespace Velmora;
using Velmora::Gui::Page;
using Velmora::Gui::ParamValueWidget;
using ServiceMessage = Velmora::Message::Message;
namespace pb = Velmora::Message;
namespace Category = Velmora::System::FileCategory;
namespace ScanStatus = Velmora::System::FileCategoryStatus;

namespace {

constexpr qint64 MiB = 1024LL * 1024;
constexpr qint64 GiB = 1024 * MiB;

System::Drive* makeDrive(int id, const QString& model, const QString& type = QStringLiteral("SATA"),
    qint64 capacity = 100 * GiB, qint64 used = 0)
{
    auto* drive = new System::Drive(id, model, QStringLiteral("SN%1").arg(id), QString(), QStringLiteral("FW1"),
        System::Bytes(capacity), 4, 4, true, type);
    if (used > 0) {
        drive->addPartition(new System::Partition(1, QStringLiteral("C:"), QString(), System::Bytes(capacity - MiB),
            System::Bytes(used), System::Bytes(MiB), System::Partition::GPT, 0, QString(), QString(),
            QStringLiteral("NTFS"), true, false));
    }
    return drive;
}

// Which of the four lamp pictures a label shows: "none" without a picture, "unknown" for any other.
QString ledShown(const QLabel* led)
{
    if (!led)
        return QStringLiteral("no such lamp");
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

template <typename T>
T* child(const QWidget& parent, const char* name)
{
    T* found = parent.findChild<T*>(QLatin1String(name));
    if (!found)
        qWarning("no child %s", name);
    return found;
}

QString ledOf(const QWidget& parent, const char* name)
{
    return ledShown(child<QLabel>(parent, name));
}

QString valueOf(const QWidget& parent, const char* name)
{
    const auto* row = child<ParamValueWidget>(parent, name);
    return row ? row->value() : QStringLiteral("no such row");
}

bool shown(const QWidget& parent, const char* name)
{
    const auto* widget = child<QWidget>(parent, name);
    return widget && widget->isVisibleTo(&parent);
}

bool enabled(const QWidget& parent, const char* name)
{
    const auto* widget = child<QWidget>(parent, name);
    return widget && widget->isEnabled();
}

// The chart item inside one of the page's graphics views.
template <typename Chart>
Chart* chartIn(const QWidget& page, const char* viewName)
{
    for (QGraphicsItem* item : child<QGraphicsView>(page, viewName)->scene()->items()) {
        if (auto* chart = qobject_cast<Chart*>(item->toGraphicsObject()))
            return chart;
    }
    return nullptr;
}

Gui::GraphicsPieChart* fileTypesChart(const QWidget& page)
{
    return chartIn<Gui::GraphicsPieChart>(page, "fileTypesChartView");
}

Gui::RoundProgressBar* driveSpaceChart(const QWidget& page)
{
    return chartIn<Gui::RoundProgressBar>(page, "driveSpaceChartView");
}

// The legend rows from top to bottom.
QList<ParamValueWidget*> legendRows(const QWidget& page)
{
    QList<ParamValueWidget*> rows;
    const QLayout* layout = child<QWidget>(page, "fileCategories")->layout();
    for (int i = 0; i < layout->count(); ++i) {
        if (auto* row = qobject_cast<ParamValueWidget*>(layout->itemAt(i)->widget()))
            rows.append(row);
    }
    return rows;
}

void finishScan(System::Drive* drive, const QMap<int, qint64>& sizes)
{
    drive->fileCategories()->setSizes(sizes);
    drive->fileCategories()->setStatus(ScanStatus::Complete, 1.0);
}

// A report of the service about a drive's scan, as the system manager receives it.
QByteArray scanReport(int driveId, pb::Code code, float progress, bool finished, qint64 videoSize = 0)
{
    pb::FileTypeStructure report;
    report.set_code(code);
    report.set_driveid(static_cast<quint32>(driveId));
    report.set_progress(progress);
    report.set_finished(finished);
    auto* info = report.add_filetypes();
    info->set_id(Category::Video);
    info->set_size(static_cast<quint64>(videoSize));
    return QByteArray::fromStdString(report.SerializeAsString());
}

// What the system manager asks of the service, one line per request.
class RequestLog : public QObject
{
public:
    explicit RequestLog(System::SystemManager& manager)
    {
        using TypeOnly = void (Communication::Handler::*)(ServiceMessage::MessageType);
        using TypeAndPayload = void (Communication::Handler::*)(ServiceMessage::MessageType, QByteArray);
        connect(&manager, static_cast<TypeOnly>(&Communication::Handler::sendMessage), this,
            [this](ServiceMessage::MessageType type) { lines.append(QStringLiteral("message %1").arg(int(type))); });
        connect(&manager, static_cast<TypeAndPayload>(&Communication::Handler::sendMessage), this,
            [this](ServiceMessage::MessageType type, const QByteArray& payload) {
                if (type != ServiceMessage::FileTypeStructureReq) {
                    lines.append(QStringLiteral("message %1").arg(int(type)));
                    return;
                }
                pb::FileTypeStructureRequest request;
                request.ParseFromArray(payload.constData(), payload.size());
                const char* const actions[] = {"start", "stop", "report"};
                lines.append(QStringLiteral("%1 scan of drive %2").arg(QLatin1String(actions[request.action()])).arg(request.driveid()));
            });
    }
    QStringList lines;
};

} // namespace

class TestGuiStatusPages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void ledPicturesLoad_data();
    void ledPicturesLoad();

    void homeListsDrivesButNotUsb_data();
    void homeListsDrivesButNotUsb();
    void homeShowsLabelUntilADriveComes();
    void homePlaceholderEmitsNothing();
    void homeRemovalEmitsNothing();

    void driveStatusBySeverity_data();
    void driveStatusBySeverity();
    void firmwareGroup_data();
    void firmwareGroup();
    void trimAndAhciFollowTrimAlone_data();
    void trimAndAhciFollowTrimAlone();
    void identityAndStorageFigures_data();
    void identityAndStorageFigures();

    void legendHasSevenRowsInCategoryOrder();
    void chartAndLegendFollowScanState_data();
    void chartAndLegendFollowScanState();
    void pageLeavesThePreviousDrive();
    void reloadDuringScanStopsItFirst();
    void reloadOfAFinishedScan();

    void detailsOpenTheHealthDialog();
    void healthDialogRows_data();
    void healthDialogRows();
    void healthDialogFollowsCurrentDrive();

    void screenshots();
};

void TestGuiStatusPages::initTestCase()
{
    QVERIFY(Gui::registerApplicationFonts().contains(QStringLiteral("Inter")));
    Gui::initGuiResources();
    qRegisterMetaType<Page::PageId>();
}

void TestGuiStatusPages::init()
{
    // Finished scans are kept in the settings under the drive's name; each case starts afresh.
    Settings::SettingsManager::clear();
}

void TestGuiStatusPages::ledPicturesLoad_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("lit");
    QTest::addColumn<int>("hue");
    QTest::newRow("inactive, dim grey-blue") << QStringLiteral(":/icons/LED_inactive") << false << 228;
    QTest::newRow("good, green") << QStringLiteral(":/icons/LED_good") << true << 144;
    QTest::newRow("OK, amber") << QStringLiteral(":/icons/LED_OK") << true << 40;
    QTest::newRow("bad, red") << QStringLiteral(":/icons/LED_bad") << true << 0;
}

void TestGuiStatusPages::ledPicturesLoad()
{
    QFETCH(QString, path);
    QFETCH(bool, lit);
    QFETCH(int, hue);

    const QPixmap picture(path);
    QVERIFY2(!picture.isNull(), qPrintable(path));
    QCOMPARE(picture.size(), QSize(24, 24));
    const QImage image = picture.toImage();
    saveWidgetShot(image.scaled(96, 96), QStringLiteral("led-") + path.section(QLatin1Char('/'), -1));

    // Below the highlight, in the body of the lamp.
    const QColor body = image.pixelColor(12, 15);
    QVERIFY2(body.alpha() == 255, qPrintable(colorText(body)));
    const int hueDistance = qAbs(body.hue() - hue) % 360;
    QVERIFY2(qMin(hueDistance, 360 - hueDistance) <= 15, qPrintable(colorText(body)));
    QCOMPARE(body.saturation() > 150 && body.value() > 150, lit);
    // The corners stay transparent: the lamp sits on any background.
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
}

void TestGuiStatusPages::homeListsDrivesButNotUsb_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("listed");
    QTest::newRow("SATA") << QStringLiteral("SATA") << true;
    QTest::newRow("NVMe") << QStringLiteral("NVMe") << true;
    QTest::newRow("USB") << QStringLiteral("USB") << false;
    QTest::newRow("usb in lower case") << QStringLiteral("usb") << false;
    QTest::newRow("USB inside a longer type") << QStringLiteral("SATA over Usb bridge") << false;
}

void TestGuiStatusPages::homeListsDrivesButNotUsb()
{
    QFETCH(QString, type);
    QFETCH(bool, listed);

    System::System system;
    system.addDrive(makeDrive(1, QStringLiteral("Brantel S1"), QStringLiteral("SATA"), 256 * GiB, 10 * GiB));
    Gui::HomePage page(&system);
    // One drive known at construction, the other arriving later: both go through the same rule.
    system.addDrive(makeDrive(2, QStringLiteral("Brantel X2"), type));
    system.addDrive(makeDrive(3, QStringLiteral("Brantel S3"), type));

    const auto* combo = child<QComboBox>(page, "DriveSelectComboBox");
    QStringList expected = {QStringLiteral("CHOOSE YOUR DRIVE"), system.drive(1)->displayText(true)};
    if (listed)
        expected << system.drive(2)->displayText(true) << system.drive(3)->displayText(true);
    QStringList texts;
    QList<int> ids;
    for (int i = 0; i < combo->count(); ++i) {
        texts << combo->itemText(i);
        ids << combo->itemData(i).toInt();
    }
    QCOMPARE(texts, expected);
    QCOMPARE(ids, listed ? QList<int>({-1, 1, 2, 3}) : QList<int>({-1, 1}));
    QCOMPARE(texts.at(1), QStringLiteral("Brantel S1 [256.00 GB] (C:)"));
    QCOMPARE(system.driveIds().size(), 3);
}

void TestGuiStatusPages::homeShowsLabelUntilADriveComes()
{
    System::System system;
    Gui::HomePage page(&system);
    QVERIFY(shown(page, "label_noDrives"));
    QVERIFY(!shown(page, "DriveSelectComboBox"));

    // Even a drive that isn't listed ends the search.
    system.addDrive(makeDrive(5, QStringLiteral("Stick"), QStringLiteral("USB")));
    QVERIFY(!shown(page, "label_noDrives"));
    QVERIFY(shown(page, "DriveSelectComboBox"));
}

void TestGuiStatusPages::homePlaceholderEmitsNothing()
{
    System::System system;
    system.addDrive(makeDrive(4, QStringLiteral("Brantel S1")));
    system.addDrive(makeDrive(7, QStringLiteral("Brantel S2")));
    Gui::HomePage page(&system);
    QSignalSpy chosen(&page, &Gui::HomePage::changeCurrentDrive);
    auto* combo = child<QComboBox>(page, "DriveSelectComboBox");
    QCOMPARE(combo->currentIndex(), 0);
    QCOMPARE(combo->currentText(), QStringLiteral("CHOOSE YOUR DRIVE"));
    QCOMPARE(chosen.count(), 0);

    combo->setCurrentIndex(2);
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen.takeFirst().at(0).toInt(), 7);
    combo->setCurrentIndex(0);
    QCOMPARE(chosen.count(), 0);
    combo->setCurrentIndex(1);
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen.takeFirst().at(0).toInt(), 4);
}

void TestGuiStatusPages::homeRemovalEmitsNothing()
{
    System::System system;
    system.addDrive(makeDrive(1, QStringLiteral("Brantel S1")));
    system.addDrive(makeDrive(2, QStringLiteral("Brantel S2")));
    Gui::HomePage page(&system);
    auto* combo = child<QComboBox>(page, "DriveSelectComboBox");
    combo->setCurrentIndex(2);
    QSignalSpy chosen(&page, &Gui::HomePage::changeCurrentDrive);

    system.removeDrive(2);
    QCOMPARE(combo->count(), 2);
    QCOMPARE(combo->findData(2), -1);
    QCOMPARE(combo->itemData(1).toInt(), 1);
    QCOMPARE(chosen.count(), 0);
}

void TestGuiStatusPages::driveStatusBySeverity_data()
{
    QTest::addColumn<int>("issue");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("leds");
    QTest::addColumn<QString>("enabledLabel");
    QTest::addColumn<QString>("shownButton");

    // Lamps in the order action needed, OK, good.
    QTest::newRow("severity 0 by free space") << int(System::FreeSpace) << QVariant(950.0)
                                              << QStringList{"bad", "inactive", "inactive"}
                                              << "label_driveStatusActionNeeded" << "button_driveStatusActionNeeded";
    QTest::newRow("severity 1 by life remaining") << int(System::LifeRemaining) << QVariant(50u)
                                                  << QStringList{"inactive", "OK", "inactive"} << "label_driveStatusOk"
                                                  << "button_driveStatusOk";
    QTest::newRow("severity 1 by firmware") << int(System::FirmwareUpdate) << QVariant(true)
                                            << QStringList{"inactive", "OK", "inactive"} << "label_driveStatusOk"
                                            << "button_driveStatusOk";
    QTest::newRow("severity 2") << int(System::FreeSpace) << QVariant(100.0)
                                << QStringList{"inactive", "inactive", "good"} << "label_driveStatusGood" << "";
}

void TestGuiStatusPages::driveStatusBySeverity()
{
    QFETCH(int, issue);
    QFETCH(QVariant, value);
    QFETCH(QStringList, leds);
    QFETCH(QString, enabledLabel);
    QFETCH(QString, shownButton);

    System::System system;
    System::Drive* drive = makeDrive(1, QStringLiteral("Brantel S1"));
    system.addDrive(drive);
    system.setCurrentDrive(1);
    Gui::SSDStatusPage page(&system);
    // Start from the worst state, so that every row has to be reset by the change.
    drive->healthStatus()->setIssueValue(System::LifeRemaining, 3u);
    QCOMPARE(ledOf(page, "led_driveStatusActionNeeded"), QStringLiteral("bad"));
    drive->healthStatus()->setIssueValue(System::LifeRemaining, 100u);
    drive->healthStatus()->setIssueValue(static_cast<System::DriveIssueType>(issue), value);

    QCOMPARE(QStringList({ledOf(page, "led_driveStatusActionNeeded"), ledOf(page, "led_driveStatusOk"),
                 ledOf(page, "led_driveStatusGood")}),
        leds);
    for (const char* label : {"label_driveStatusActionNeeded", "label_driveStatusOk", "label_driveStatusGood"})
        QCOMPARE(enabled(page, label), enabledLabel == QLatin1String(label));
    for (const char* button : {"button_driveStatusActionNeeded", "button_driveStatusOk"})
        QCOMPARE(shown(page, button), shownButton == QLatin1String(button));
    QCOMPARE(child<QPushButton>(page, "button_driveStatusActionNeeded")->text(), QStringLiteral("DETAILS"));
    QCOMPARE(child<QLabel>(page, "label_driveStatusActionNeeded")->text(), QStringLiteral("ACTION NEEDED"));
    QCOMPARE(child<QLabel>(page, "label_driveStatusGood")->text(), QStringLiteral("GOOD"));
}

void TestGuiStatusPages::firmwareGroup_data()
{
    QTest::addColumn<QString>("newestFirmware");
    QTest::addColumn<QString>("actionNeededLed");
    QTest::addColumn<QString>("goodLed");
    QTest::addColumn<bool>("detailsShown");

    QTest::newRow("newer firmware known") << QStringLiteral("FW2") << "bad" << "inactive" << true;
    QTest::newRow("same firmware, other case") << QStringLiteral("fw1") << "inactive" << "good" << false;
    QTest::newRow("nothing known") << QString() << "inactive" << "good" << false;
}

void TestGuiStatusPages::firmwareGroup()
{
    QFETCH(QString, newestFirmware);
    QFETCH(QString, actionNeededLed);
    QFETCH(QString, goodLed);
    QFETCH(bool, detailsShown);

    System::System system;
    System::Drive* drive = makeDrive(1, QStringLiteral("Brantel S1"));
    system.addDrive(drive);
    drive->enableHealthMonitoring();
    system.setCurrentDrive(1);
    Gui::SSDStatusPage page(&system);
    QSignalSpy pageRequests(&page, &Gui::SSDStatusPage::changePageRequest);

    // The drive learns of its newest firmware after the page shows it.
    drive->setNewestFirmwareVersion(newestFirmware);

    QCOMPARE(ledOf(page, "led_firmwareStatusActionNeeded"), actionNeededLed);
    QCOMPARE(ledOf(page, "led_firmwareStatusGood"), goodLed);
    QCOMPARE(enabled(page, "label_firmwareStatusActionNeeded"), detailsShown);
    QCOMPARE(enabled(page, "label_firmwareStatusGood"), !detailsShown);
    QCOMPARE(shown(page, "button_frimwareStatusDetails"), detailsShown);
    QCOMPARE(valueOf(page, "DriveFirmware"), QStringLiteral("FW1"));

    auto* details = child<QPushButton>(page, "button_frimwareStatusDetails");
    QCOMPARE(details->text(), QStringLiteral("DETAILS"));
    if (detailsShown) {
        page.show();
        QTest::mouseClick(details, Qt::LeftButton);
        QCOMPARE(pageRequests.count(), 1);
        QCOMPARE(pageRequests.first().at(0).value<Page::PageId>(), Page::FirmwareUpdateId);
    }
}

void TestGuiStatusPages::trimAndAhciFollowTrimAlone_data()
{
    QTest::addColumn<bool>("trim");
    QTest::addColumn<bool>("ahci");
    QTest::addColumn<QString>("yes");
    QTest::addColumn<QString>("no");
    QTest::newRow("TRIM on, AHCI off") << true << false << "good" << "inactive";
    QTest::newRow("TRIM on, AHCI on") << true << true << "good" << "inactive";
    QTest::newRow("TRIM off, AHCI on") << false << true << "inactive" << "bad";
    QTest::newRow("TRIM off, AHCI off") << false << false << "inactive" << "bad";
}

void TestGuiStatusPages::trimAndAhciFollowTrimAlone()
{
    QFETCH(bool, trim);
    QFETCH(bool, ahci);
    QFETCH(QString, yes);
    QFETCH(QString, no);

    System::System system;
    system.setTrimEnabled(!trim);
    system.setAhciEnabled(!ahci);
    // No drive is needed for the machine's own state.
    Gui::SSDStatusPage page(&system);
    system.setTrimEnabled(trim);
    system.setAhciEnabled(ahci);

    QCOMPARE(ledOf(page, "led_trimYes"), yes);
    QCOMPARE(ledOf(page, "led_ahciYes"), yes);
    QCOMPARE(ledOf(page, "led_trimNo"), no);
    QCOMPARE(ledOf(page, "led_ahciNo"), no);
    QCOMPARE(child<QLabel>(page, "label_trim")->text(), QStringLiteral("TRIM SUPPORT:"));
    QCOMPARE(child<QLabel>(page, "label_ahci")->text(), QStringLiteral("AHCI SUPPORT:"));
}

void TestGuiStatusPages::identityAndStorageFigures_data()
{
    QTest::addColumn<qint64>("capacity");
    QTest::addColumn<qint64>("used");
    QTest::addColumn<QString>("capacityText");
    QTest::addColumn<QString>("usedText");
    QTest::addColumn<QString>("freeText");
    QTest::addColumn<double>("usedPercent");

    QTest::newRow("a quarter used") << 100 * GiB << 25 * GiB << "100.00 GB" << "25.00 GB - 25.00%"
                                    << "75.00 GB - 75.00%" << 25.0;
    QTest::newRow("nothing used") << 100 * GiB << qint64(0) << "100.00 GB" << "0.00 B - 0.00%"
                                  << "100.00 GB - 100.00%" << 0.0;
    QTest::newRow("a third used, two decimals") << 3 * GiB << GiB << "3.00 GB" << "1.00 GB - 33.33%"
                                                << "2.00 GB - 66.67%" << 100.0 / 3.0;
}

void TestGuiStatusPages::identityAndStorageFigures()
{
    QFETCH(qint64, capacity);
    QFETCH(qint64, used);
    QFETCH(QString, capacityText);
    QFETCH(QString, usedText);
    QFETCH(QString, freeText);
    QFETCH(double, usedPercent);

    System::System system;
    system.addDrive(makeDrive(1, QStringLiteral("Other drive"), QStringLiteral("SATA"), 7 * GiB, GiB));
    system.addDrive(makeDrive(2, QStringLiteral("Brantel S2 SATA Disk Device"), QStringLiteral("SATA"), capacity, used));
    system.setCurrentDrive(1);
    Gui::SSDStatusPage page(&system);
    system.setCurrentDrive(2);

    QCOMPARE(valueOf(page, "DriveModel"), QStringLiteral("Brantel S2"));
    QCOMPARE(valueOf(page, "DriveSN"), QStringLiteral("SN2"));
    QCOMPARE(valueOf(page, "DriveCapacity"), capacityText);
    QCOMPARE(valueOf(page, "DriveFirmware"), QStringLiteral("FW1"));
    QCOMPARE(valueOf(page, "pvWidget_totoalStorage"), capacityText);
    QCOMPARE(valueOf(page, "pvWidget_usedStorage"), usedText);
    QCOMPARE(valueOf(page, "pvWidget_freeStorage"), freeText);
    QVERIFY(qAbs(driveSpaceChart(page)->target() - usedPercent) < 1e-9);

    const QList<QPair<const char*, const char*>> captions = {{"DriveModel", "SSD MODEL:"},
        {"DriveCapacity", "CAPACITY:"}, {"DriveSN", "SERIAL NUMBER:"}, {"DriveFirmware", "FIRMWARE:"},
        {"FirmwareStatus", "FIRMWARE STATUS:"}, {"DriveStatus", "DRIVE STATUS:"},
        {"pvWidget_totoalStorage", "TOTAL STORAGE:"}, {"pvWidget_usedStorage", "USED STORAGE:"},
        {"pvWidget_freeStorage", "FREE STORAGE:"}};
    for (const auto& [name, caption] : captions)
        QCOMPARE(child<ParamValueWidget>(page, name)->name(), QLatin1String(caption));
    QCOMPARE(child<QLabel>(page, "titleLabel")->text(), QStringLiteral("MY SSD"));
    QCOMPARE(child<QPushButton>(page, "reload_button")->text(), QStringLiteral("RELOAD"));
}

void TestGuiStatusPages::legendHasSevenRowsInCategoryOrder()
{
    System::System system;
    System::Drive* first = makeDrive(1, QStringLiteral("Brantel S1"));
    System::Drive* second = makeDrive(2, QStringLiteral("Brantel S2"));
    system.addDrive(first);
    system.addDrive(second);
    system.setCurrentDrive(1);
    Gui::SSDStatusPage page(&system);
    QCOMPARE(child<QWidget>(page, "fileCategories")->styleSheet(), QStringLiteral("QLabel {\n\tfont: 13px \"Inter UI\";\n}"));

    // 8 GiB in all.
    finishScan(first, {{Category::System, 2 * GiB}, {Category::Programs, GiB}, {Category::Documents, 512 * MiB},
                          {Category::Video, 3 * GiB}, {Category::Sound, 0}, {Category::Pictures, 320 * MiB},
                          {Category::Other, 1216 * MiB}});
    system.setCurrentDrive(2);
    system.setCurrentDrive(1);

    const QList<ParamValueWidget*> rows = legendRows(page);
    QCOMPARE(rows.size(), 7);
    QCOMPARE(child<QWidget>(page, "fileCategories")->findChildren<ParamValueWidget*>().size(), 7);
    const QStringList values = {"2.00 GB - 25.00%", "1.00 GB - 12.50%", "512.00 MB - 6.25%", "3.00 GB - 37.50%",
        "0.00 B - 0.00%", "320.00 MB - 3.91%", "1.19 GB - 14.84%"};
    for (int category = 0; category < 7; ++category) {
        QCOMPARE(rows.at(category)->name(), System::FileCategories::categoryName(category));
        QCOMPARE(colorText(rows.at(category)->color()), colorText(System::FileCategories::categoryColor(category)));
        QCOMPARE(rows.at(category)->value(), values.at(category));
    }
    QCOMPARE(rows.first()->name(), QStringLiteral("SYSTEM"));
    QCOMPARE(rows.last()->name(), QStringLiteral("OTHER"));

    // Every category is a slice of the chart, its tool tip the category's name.
    const Gui::GraphicsPieChart* chart = fileTypesChart(page);
    QVERIFY(chart);
    for (int category = 0; category < 7; ++category) {
        QVERIFY(chart->arc(category));
        QCOMPARE(chart->arc(category)->toolTip(), System::FileCategories::categoryName(category));
    }
    QCOMPARE(chart->order().first(), int(Category::Video));
}

void TestGuiStatusPages::chartAndLegendFollowScanState_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("progress");
    QTest::addColumn<bool>("reloadEnabledAfter");
    QTest::addColumn<bool>("busyShown");

    // The button starts disabled in each case: a scan only re-enables it when it is over.
    QTest::newRow("not scanned") << int(ScanStatus::NotScanned) << 0.0 << true << true;
    QTest::newRow("scanning") << int(ScanStatus::Scanning) << 0.4 << false << true;
    QTest::newRow("complete") << int(ScanStatus::Complete) << 1.0 << true << false;
}

void TestGuiStatusPages::chartAndLegendFollowScanState()
{
    QFETCH(int, status);
    QFETCH(double, progress);
    QFETCH(bool, reloadEnabledAfter);
    QFETCH(bool, busyShown);

    System::System system;
    System::Drive* drive = makeDrive(1, QStringLiteral("Brantel S1"));
    system.addDrive(drive);
    system.setCurrentDrive(1);
    Gui::SSDStatusPage page(&system);
    page.show();
    auto* reload = child<QPushButton>(page, "reload_button");
    // Another state first, so that the one under test is a change.
    drive->fileCategories()->setStatus(status == ScanStatus::Scanning ? ScanStatus::NotScanned : ScanStatus::Scanning, 0.1);
    drive->fileCategories()->setSize(Category::Pictures, 3 * MiB);
    reload->setEnabled(false);

    drive->fileCategories()->setStatus(status, progress);

    const QString time = status == ScanStatus::Complete
        ? QLocale::system().toString(drive->fileCategories()->timestamp(), QLocale::ShortFormat)
        : QStringLiteral("NO DATA");
    QCOMPARE(child<QLabel>(page, "label_analyzed")->text(), QStringLiteral("ANALYZED:  ") + time);
    QCOMPARE(reload->isEnabled(), reloadEnabledAfter);
    const Gui::GraphicsPieChart* chart = fileTypesChart(page);
    QCOMPARE(chart->busyRing()->isVisible(), busyShown);
    if (busyShown) {
        QCOMPARE(chart->progress(), progress);
        QCOMPARE(chart->busyRing()->spanAngle(), int(progress * -5760));
    }
    QCOMPARE(legendRows(page).at(Category::Pictures)->value(), QStringLiteral("3.00 MB - 100.00%"));
}

void TestGuiStatusPages::pageLeavesThePreviousDrive()
{
    System::System system;
    System::Drive* first = makeDrive(1, QStringLiteral("Brantel S1"), QStringLiteral("SATA"), 100 * GiB, 10 * GiB);
    System::Drive* second = makeDrive(2, QStringLiteral("Brantel S2"), QStringLiteral("SATA"), 100 * GiB, 50 * GiB);
    system.addDrive(first);
    system.addDrive(second);
    system.setCurrentDrive(1);
    Gui::SSDStatusPage page(&system);
    system.setCurrentDrive(2);
    finishScan(second, {{Category::Video, GiB}});

    // Whatever the first drive does now, the page shows the second.
    finishScan(first, {{Category::Video, 5 * GiB}, {Category::Sound, GiB}});
    first->healthStatus()->setIssueValue(System::FreeSpace, 990.0);
    first->setNewestFirmwareVersion(QStringLiteral("FW9"));

    QCOMPARE(legendRows(page).at(Category::Video)->value(), QStringLiteral("1.00 GB - 100.00%"));
    QCOMPARE(legendRows(page).at(Category::Sound)->value(), QStringLiteral("0.00 B - 0.00%"));
    QCOMPARE(ledOf(page, "led_driveStatusGood"), QStringLiteral("good"));
    QCOMPARE(valueOf(page, "DriveModel"), QStringLiteral("Brantel S2"));
    QCOMPARE(valueOf(page, "pvWidget_usedStorage"), QStringLiteral("50.00 GB - 50.00%"));

    // And the second drive's own changes still arrive.
    second->healthStatus()->setIssueValue(System::FreeSpace, 950.0);
    QCOMPARE(ledOf(page, "led_driveStatusActionNeeded"), QStringLiteral("bad"));
}

void TestGuiStatusPages::reloadDuringScanStopsItFirst()
{
    System::System system;
    System::SystemManager manager(&system);
    RequestLog requests(manager);
    system.addDrive(makeDrive(3, QStringLiteral("Brantel S3")));
    system.setCurrentDrive(3);
    Gui::SSDStatusPage page(&system);
    page.show();
    auto* reload = child<QPushButton>(page, "reload_button");

    manager.handleMessage(ServiceMessage::FileCat, scanReport(3, pb::IN_PROGRESS, 0.3f, false, 100 * MiB));
    QCOMPARE(system.drive(3)->fileCategories()->status(), int(ScanStatus::Scanning));
    reload->setEnabled(true);
    QTest::mouseClick(reload, Qt::LeftButton);

    QCOMPARE(requests.lines, QStringList({"stop scan of drive 3", "start scan of drive 3",
                                 QStringLiteral("message %1").arg(int(ServiceMessage::SystemInfoRequest))}));
    QVERIFY(!reload->isEnabled());

    // The service says the old scan is gone, then the new one reports until it is done.
    manager.handleMessage(ServiceMessage::FileCat, scanReport(3, pb::NOT_FOUND, 0.0f, false));
    QCOMPARE(system.drive(3)->fileCategories()->status(), int(ScanStatus::NotScanned));
    QVERIFY(!reload->isEnabled());
    manager.handleMessage(ServiceMessage::FileCat, scanReport(3, pb::IN_PROGRESS, 0.5f, false, 200 * MiB));
    QVERIFY(!reload->isEnabled());
    QCOMPARE(fileTypesChart(page)->progress(), 0.5);
    manager.handleMessage(ServiceMessage::FileCat, scanReport(3, pb::SUCCESS, 1.0f, true, 400 * MiB));
    QVERIFY(reload->isEnabled());
    QVERIFY(!fileTypesChart(page)->busyRing()->isVisible());
    QCOMPARE(legendRows(page).at(Category::Video)->value(), QStringLiteral("400.00 MB - 100.00%"));

    // Once that is over, a scan that is gone again gives the button back at once.
    QTest::mouseClick(reload, Qt::LeftButton);
    manager.handleMessage(ServiceMessage::FileCat, scanReport(3, pb::IN_PROGRESS, 0.2f, false));
    QVERIFY(!reload->isEnabled());
    manager.handleMessage(ServiceMessage::FileCat, scanReport(3, pb::NOT_FOUND, 0.0f, false));
    QVERIFY(reload->isEnabled());
}

void TestGuiStatusPages::reloadOfAFinishedScan()
{
    System::System system;
    System::SystemManager manager(&system);
    RequestLog requests(manager);
    system.addDrive(makeDrive(2, QStringLiteral("Brantel S2")));
    system.setCurrentDrive(2);
    finishScan(system.drive(2), {{Category::Documents, MiB}});
    Gui::SSDStatusPage page(&system);
    page.show();
    auto* reload = child<QPushButton>(page, "reload_button");
    QVERIFY(reload->isEnabled());

    QTest::mouseClick(reload, Qt::LeftButton);
    QCOMPARE(requests.lines, QStringList({"start scan of drive 2",
                                 QStringLiteral("message %1").arg(int(ServiceMessage::SystemInfoRequest))}));
    QVERIFY(!reload->isEnabled());
    manager.handleMessage(ServiceMessage::FileCat, scanReport(2, pb::IN_PROGRESS, 0.6f, false));
    QVERIFY(!reload->isEnabled());
    QCOMPARE(child<QLabel>(page, "label_analyzed")->text(), QStringLiteral("ANALYZED:  NO DATA"));
    manager.handleMessage(ServiceMessage::FileCat, scanReport(2, pb::SUCCESS, 1.0f, true, MiB));
    QVERIFY(reload->isEnabled());
}

void TestGuiStatusPages::detailsOpenTheHealthDialog()
{
    System::System system;
    System::Drive* drive = makeDrive(1, QStringLiteral("Brantel S1"));
    system.addDrive(drive);
    system.setCurrentDrive(1);
    Gui::SSDStatusPage page(&system);
    page.show();
    QVERIFY(!page.findChild<Gui::DriveHealthInfoWidget*>());

    drive->healthStatus()->setIssueValue(System::FreeSpace, 950.0);
    QTest::mouseClick(child<QPushButton>(page, "button_driveStatusActionNeeded"), Qt::LeftButton);
    auto* dialog = page.findChild<Gui::DriveHealthInfoWidget*>();
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    QVERIFY(dialog->isModal());
    QCOMPARE(ledOf(*dialog, "FreeSpaceStatusLED"), QStringLiteral("bad"));

    QTest::mouseClick(child<QPushButton>(*dialog, "button_close"), Qt::LeftButton);
    QVERIFY(!dialog->isVisible());

    // The other details button opens the same dialog, which has followed the drive meanwhile.
    drive->healthStatus()->setIssueValue(System::FreeSpace, 850.0);
    QTest::mouseClick(child<QPushButton>(page, "button_driveStatusOk"), Qt::LeftButton);
    QCOMPARE(page.findChildren<Gui::DriveHealthInfoWidget*>().size(), 1);
    QVERIFY(dialog->isVisible());
    QCOMPARE(ledOf(*dialog, "FreeSpaceStatusLED"), QStringLiteral("OK"));
    dialog->close();
}

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
    QTest::newRow("free space, severity 2") << System::FreeSpace << QVariant(100.0) << "FreeSpaceStatusLED" << "good" << "";
    QTest::newRow("life remaining, severity 0") << System::LifeRemaining << QVariant(9u) << "LifeRemainingStatusLED" << "bad"
                                                << "LESS THAN 10% OF REMAINING DISK LIFE LEFT.";
    QTest::newRow("life remaining, severity 1") << System::LifeRemaining << QVariant(69u) << "LifeRemainingStatusLED" << "OK"
                                                << "LESS THAN 70% OF REMAINING DISK LIFE LEFT.";
    QTest::newRow("life remaining, severity 2") << System::LifeRemaining << QVariant(70u) << "LifeRemainingStatusLED" << "good" << "";
    QTest::newRow("SATA speed, severity 0") << System::SATASpeedLimit << slowPort << "SataSpeedStatusLED" << "bad"
                                            << "DRIVE CAN WORK BETTER IF CONNECTED TO FASTER SATA CONTROLLER.";
    QTest::newRow("SATA speed, severity 2") << System::SATASpeedLimit << fullSpeed << "SataSpeedStatusLED" << "good" << "";
    QTest::newRow("firmware, severity 1") << System::FirmwareUpdate << QVariant(true) << "FirmwareUpdateStatusLED" << "OK" << "FIRMWARE UPDATE AVAILABLE FOR DRIVE.";
    QTest::newRow("firmware, severity 2") << System::FirmwareUpdate << QVariant(false) << "FirmwareUpdateStatusLED" << "good" << "";
}

void TestGuiStatusPages::healthDialogRows()
{
    QFETCH(System::DriveIssueType, issue);
    QFETCH(QVariant, value);
    QFETCH(QString, ledName);
    QFETCH(QString, led);
    QFETCH(QString, description);

    System::System system;
    System::Drive* drive = makeDrive(1, QStringLiteral("Brantel S1"));
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
        QCOMPARE(ledOf(dialog, qPrintable(rows.at(i))), tested ? led : QStringLiteral("good"));
        const auto* label = child<QLabel>(dialog, qPrintable(descriptions.at(i)));
        QCOMPARE(label->text(), tested ? description : QString());
        QCOMPARE(label->isVisibleTo(&dialog), tested && !description.isEmpty());
    }
}

void TestGuiStatusPages::healthDialogFollowsCurrentDrive()
{
    System::System system;
    System::Drive* first = makeDrive(1, QStringLiteral("Brantel S1"));
    System::Drive* second = makeDrive(2, QStringLiteral("Brantel S2"));
    system.addDrive(first);
    system.addDrive(second);
    Gui::DriveHealthInfoWidget dialog(&system);
    QCOMPARE(ledOf(dialog, "FreeSpaceStatusLED"), QStringLiteral("good"));
    QCOMPARE(child<QPushButton>(dialog, "button_close")->text(), QStringLiteral("CLOSE"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("DRIVE STATUS"));

    first->healthStatus()->setIssueValue(System::FreeSpace, 950.0);
    system.setCurrentDrive(1);
    QCOMPARE(ledOf(dialog, "FreeSpaceStatusLED"), QStringLiteral("bad"));
    system.setCurrentDrive(2);
    QCOMPARE(ledOf(dialog, "FreeSpaceStatusLED"), QStringLiteral("good"));

    // The first drive no longer reaches the dialog; the second one does.
    first->healthStatus()->setIssueValue(System::LifeRemaining, 5u);
    QCOMPARE(ledOf(dialog, "LifeRemainingStatusLED"), QStringLiteral("good"));
    second->healthStatus()->setIssueValue(System::LifeRemaining, 50u);
    QCOMPARE(ledOf(dialog, "LifeRemainingStatusLED"), QStringLiteral("OK"));
    QCOMPARE(ledOf(dialog, "BadSectorsStatusLED"), QStringLiteral("good"));
}

void TestGuiStatusPages::screenshots()
{
    System::System system;
    system.setTrimEnabled(true);
    System::Drive* drive = makeDrive(1, QStringLiteral("Brantel S1 Pro 512GB"), QStringLiteral("SATA"), 476 * GiB,
        361 * GiB);
    system.addDrive(drive);
    system.addDrive(makeDrive(2, QStringLiteral("Orvane HD1000"), QStringLiteral("SATA"), 931 * GiB, 200 * GiB));
    drive->enableHealthMonitoring();
    drive->setNewestFirmwareVersion(QStringLiteral("FW2"));
    finishScan(drive, {{Category::System, 38 * GiB}, {Category::Programs, 61 * GiB}, {Category::Documents, 12 * GiB},
                          {Category::Video, 142 * GiB}, {Category::Sound, 9 * GiB}, {Category::Pictures, 27 * GiB},
                          {Category::Other, 72 * GiB}});

    Gui::HomePage home(&system);
    home.resize(1216, 760);
    home.show();
    QVERIFY(QTest::qWaitForWindowExposed(&home));
    const QImage homeShot = grabWidget(home, QStringLiteral("home-page"));
    QVERIFY(containsColor(homeShot, QColor(0, 10, 50)));

    system.setCurrentDrive(1);
    Gui::SSDStatusPage page(&system);
    page.resize(1216, 760);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    // Let both charts finish their half-second animation.
    QTRY_COMPARE_WITH_TIMEOUT(fileTypesChart(page)->timeLine()->state(), QTimeLine::NotRunning, 3000);
    QTRY_COMPARE_WITH_TIMEOUT(driveSpaceChart(page)->timeLine()->state(), QTimeLine::NotRunning, 3000);
    QCOMPARE(driveSpaceChart(page)->text(), QStringLiteral("75.84%"));
    const QImage pageShot = grabWidget(page, QStringLiteral("ssd-status-page"));
    QVERIFY(containsColor(pageShot, QColor(0, 36, 94)));
    // The largest slice, video, is painted in its category's colour.
    QVERIFY(containsColor(pageShot, System::FileCategories::categoryColor(Category::Video),
        child<QWidget>(page, "fileTypesChartView")->geometry().translated(
            child<QWidget>(page, "fileTypesChartView")->parentWidget()->pos())));

    QTest::mouseClick(child<QPushButton>(page, "button_driveStatusOk"), Qt::LeftButton);
    auto* dialog = page.findChild<Gui::DriveHealthInfoWidget*>();
    QVERIFY(dialog && dialog->isVisible());
    grabWidget(*dialog, QStringLiteral("drive-health-dialog"));
    dialog->close();
}

KESTRAVIN_GUI_TEST_MAIN(TestGuiStatusPages)
#include "tst_gui_statuspages.moc"
