#include <QApplication>

#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "WidgetShots.h"
#include "smart/SmartTestData.h"

#include "gui/ApplicationFonts.h"
#include "gui/pages/FirmwareUpdatePage.h"
#include "gui/pages/PerformanceCheckPage.h"
#include "gui/pages/SmartParametersPage.h"
#include "gui/widgets/ParamValueWidget.h"
#include "gui/widgets/ProgressBar.h"
#include "gui/widgets/TimeGraph.h"
#include "message/Payload.h"
#include "performance/PerformanceCheck.h"
#include "performance/PerformanceResult.h"
#include "settings/SettingsManager.h"
#include "smart/SmartController.h"
#include "smart/SmartManager.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"
#include "update/FirmwareUpdate.h"

#include "DiskPerformance.pb.h"
#include "Smart.pb.h"

#include <QDesktopServices>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QUrl>

#include <memory>

using namespace Velmora;
using Velmora::Gui::ParamValueWidget;
using Velmora::Gui::ProgressBar;
using Velmora::Gui::TimeGraph;
using Velmora::Performance::PerformanceCheck;
using Velmora::Performance::PerformanceResult;
using Velmora::System::Drive;

Q_DECLARE_METATYPE(PerformanceCheck::TestStatus)

namespace {

// The colour of the newest sample of a time graph and of the first lit segment of a bar.
const QColor FirstLit(0, 225, 255);
const QColor PageBackground(0, 10, 50);
const QSize PageSize(1000, 760);

Drive* makeDrive(int id, const QString& model, const QString& firmware = QStringLiteral("EXFM61.3"))
{
    return new Drive(id, model, QStringLiteral("SN%1").arg(id), QString(), firmware, System::Bytes(qint64(480) << 30),
        4, 4, true, QStringLiteral("SATA"));
}

// One read-out as the SMART manager hands it to a controller. Attributes are "id:hex".
void readOut(Drive* drive, const QStringList& attributes)
{
    Smart::SmartController* controller = drive->smartController();
    for (const auto& attribute : SmartTestData::attributes(attributes))
        controller->addAttribute(attribute);
    controller->commitReadout();
}

QString raw(quint64 value)
{
    return QString::fromLatin1(SmartTestData::rawHex(value));
}

// A full read-out of a drive with the default SMART class: erase counts share attribute 173,
// the maximum in the low half, the average in the high half.
QStringList fullReadOut(int life, int temperature, quint64 hours, quint64 cycles, quint32 maxErase, quint32 avgErase,
    quint64 written)
{
    return {QStringLiteral("231:") + raw(quint64(life)), QStringLiteral("194:") + raw(quint64(temperature)),
        QStringLiteral("9:") + raw(hours), QStringLiteral("12:") + raw(cycles),
        QStringLiteral("173:") + raw(quint64(maxErase) | (quint64(avgErase) << 16)),
        QStringLiteral("241:") + raw(written), QStringLiteral("5:") + raw(0)};
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

void showPage(QWidget& page)
{
    page.resize(PageSize);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
}

// Whether the graph draws any sample: the newest one takes the first colour of the gradient.
bool graphShowsData(QWidget& page, const QString& shotName)
{
    return containsColor(grabWidget(*child<TimeGraph>(page, "GBWrittenGraph"), shotName), FirstLit);
}

void setReadInterval(const QVariant& milliseconds)
{
    Settings::SettingsManager::clear();
    if (milliseconds.isValid())
        Settings::SettingsManager::setValue(QStringLiteral("SMART"), QStringLiteral("ReadInterval"), milliseconds);
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

// Receives what the program hands to the browser.
class UrlRecorder : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> opened;

public slots:
    void open(const QUrl& url) { opened.append(url); }
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

    void initialTexts_data();
    void initialTexts();

    void smartRowsShowTheReadOut_data();
    void smartRowsShowTheReadOut();
    void otherMakersDriveShowsNothing();
    void smartPageIgnoresOtherDrives();
    void writtenGraphFollowsTheReadInterval_data();
    void writtenGraphFollowsTheReadInterval();

    void statusTable_data();
    void statusTable();
    void clockTexts_data();
    void clockTexts();
    void resultTexts_data();
    void resultTexts();
    void fullTestShowsTheBestRound();
    void cancelLeavesTheBarEmpty();
    void captionColourOfTheResultLabels();

    void firmwareStates_data();
    void firmwareStates();
    void updateButtonOpensTheFirmwarePage();
    void checkButtonAsksForTheMakersDrives();
    void finishedCheckRefreshesThePage();

    void pagesOnScreen();

private:
    UrlRecorder m_browser;
};

void TestGuiDrivePages::initTestCase()
{
    Gui::registerApplicationFonts();
    Logger::setConsoleEnabled(false);
    Logger::setLevel(Logger::Debug);
    QDesktopServices::setUrlHandler(QStringLiteral("https"), &m_browser, "open");
}

void TestGuiDrivePages::init()
{
    Settings::SettingsManager::clear();
    System::SupportedDrivesManager::instance()->setSupportedDrives({});
    m_browser.opened.clear();
}

void TestGuiDrivePages::cleanup()
{
    System::SupportedDrivesManager::instance()->setSupportedDrives({});
}

// ---------------------------------------------------------------------------------------------
// Captions as a page first shows them.

void TestGuiDrivePages::initialTexts_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("objectName");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QString>("expected");

    const QByteArray text("text");
    const QByteArray name("name");
    const QString smart = QStringLiteral("smart");
    const QString performance = QStringLiteral("performance");
    const QString firmware = QStringLiteral("firmware");

    QTest::newRow("smart title") << smart << "titleLabel" << text << "SMART PARAMETERS";
    QTest::newRow("life") << smart << "life_param" << name << "LIFE REMAINING:";
    QTest::newRow("temperature") << smart << "temp_param" << name << "TEMPERATURE:";
    QTest::newRow("hours") << smart << "powerOnHours_param" << name << "POWER-ON HOURS";
    QTest::newRow("cycles") << smart << "powerCycles_param" << name << "POWER CYCLES";
    QTest::newRow("avg erase") << smart << "avgEraseCount_param" << name << "AVG ERASE COUNT";
    QTest::newRow("max erase") << smart << "maxEraseCount_param" << name << "MAX ERASE COUNT";
    QTest::newRow("written") << smart << "GBWritten_param" << name << "GB WRITTEN";

    QTest::newRow("performance title") << performance << "titleLabel" << text << "PERFORMANCE CHECK";
    QTest::newRow("elapsed") << performance << "elapsedTime" << text << "0:00";
    QTest::newRow("write caption") << performance << "label_2" << text << "WRITE:";
    QTest::newRow("read caption") << performance << "label" << text << "READ:";
    QTest::newRow("read figure, two blanks") << performance << "readResult" << text << "0  MB/s";
    QTest::newRow("write figure") << performance << "writeResult" << text << "0 MB/s";
    QTest::newRow("details") << performance << "label_testDetails" << text
                             << "TEST DETAILS: TEST PERFORMS CONTINIOUS WRITE AND READ OF 4MB BLOCKS";
    QTest::newRow("toggle") << performance << "toggleTest" << text << "START";

    QTest::newRow("firmware title") << firmware << "titleLabel" << text << "FIRMWARE UPDATE";
    QTest::newRow("model caption") << firmware << "driveModel" << name << "SSD MODEL:";
    QTest::newRow("firmware caption") << firmware << "currentFVersion" << name << "FIRMWARE VERSION:";
    QTest::newRow("updates caption") << firmware << "newestFVersion" << name << "AVAILABLE UPDATES:";
    QTest::newRow("analyzed") << firmware << "label_analyzed" << text << "ANALYZED:";
    QTest::newRow("check button") << firmware << "pushButton_checkForUpdates" << text << "CHECK FOR UPDATES";
    QTest::newRow("update button") << firmware << "firmwareUpdatePushButton" << text << "UPDATE FIRMWARE";
}

void TestGuiDrivePages::initialTexts()
{
    QFETCH(QString, page);
    QFETCH(QString, objectName);
    QFETCH(QByteArray, property);
    QFETCH(QString, expected);

    System::System system;
    PerformanceCheck check(&system);
    Update::FirmwareUpdate firmwareUpdate(&system, nullptr, nullptr);
    std::unique_ptr<QWidget> widget;
    if (page == QLatin1String("smart"))
        widget = std::make_unique<Gui::SmartParametersPage>(&system);
    else if (page == QLatin1String("performance"))
        widget = std::make_unique<Gui::PerformanceCheckPage>(&check);
    else
        widget = std::make_unique<Gui::FirmwareUpdatePage>(&firmwareUpdate, &system);

    const QObject* found = widget->findChild<QObject*>(objectName);
    QVERIFY2(found, qPrintable(objectName));
    QCOMPARE(found->property(property.constData()).toString(), expected);
}

// ---------------------------------------------------------------------------------------------
// SMART page

void TestGuiDrivePages::smartRowsShowTheReadOut_data()
{
    QTest::addColumn<QStringList>("attributes");
    QTest::addColumn<QString>("life");
    QTest::addColumn<int>("lifeBar");
    QTest::addColumn<QString>("temperature");
    QTest::addColumn<int>("temperatureBar");
    QTest::addColumn<QStringList>("counters");  // hours, cycles, average erase, maximum erase
    QTest::addColumn<QString>("written");

    const QString na = QStringLiteral("NOT SUPPORTED");

    QTest::newRow("full read-out")
        << fullReadOut(87, 41, 12345, 678, 150, 120, 15023) << "87%" << 87 << "41 \u00b0C" << 41
        << QStringList{"12345", "678", "120", "150"} << "15023 GB";
    QTest::newRow("large counters stay whole numbers")
        << fullReadOut(3, 0, 281474976710655ULL, 4000000000ULL, 65535, 65534, 9876543210ULL) << "3%" << 3
        << "0 \u00b0C" << 0 << QStringList{"281474976710655", "4000000000", "65534", "65535"} << "9876543210 GB";
    QTest::newRow("temperature above the scale fills the bar")
        << fullReadOut(100, 123, 1, 1, 1, 1, 1) << "100%" << 100 << "123 \u00b0C" << 100
        << QStringList{"1", "1", "1", "1"} << "1 GB";

    QStringList without241 = fullReadOut(64, 35, 900, 77, 40, 30, 500);
    without241.removeAt(5);
    QTest::newRow("only attribute 241 missing")
        << without241 << "64%" << 64 << "35 \u00b0C" << 35 << QStringList{"900", "77", "30", "40"} << na;

    QTest::newRow("only temperature")
        << QStringList{QStringLiteral("194:") + raw(52)} << na << 0 << "52 \u00b0C" << 52
        << QStringList{na, na, na, na} << na;
    QTest::newRow("nothing decoded") << QStringList() << na << 0 << na << 0 << QStringList{na, na, na, na} << na;
}

void TestGuiDrivePages::smartRowsShowTheReadOut()
{
    QFETCH(QStringList, attributes);
    QFETCH(QString, life);
    QFETCH(int, lifeBar);
    QFETCH(QString, temperature);
    QFETCH(int, temperatureBar);
    QFETCH(QStringList, counters);
    QFETCH(QString, written);

    setReadInterval(900000);
    System::System system;
    Drive* before = makeDrive(1, QStringLiteral("BRANTEL SSD 240G"));
    Drive* drive = makeDrive(2, QStringLiteral("BRANTEL SSD 480G"));
    system.addDrive(before);
    system.addDrive(drive);
    system.setCurrentDrive(1);
    readOut(before, fullReadOut(33, 77, 5, 6, 7, 8, 9));

    // The page first shows another drive with every row filled in, so that nothing passes for
    // being left over.
    Gui::SmartParametersPage page(&system);
    QCOMPARE(barValue(page, "life_progressBar"), 33);
    QCOMPARE(barValue(page, "temp_progressBar"), 77);

    system.setCurrentDrive(2);
    readOut(drive, attributes);

    QCOMPARE(value(page, "life_param"), life);
    QCOMPARE(barValue(page, "life_progressBar"), lifeBar);
    QCOMPARE(value(page, "temp_param"), temperature);
    QCOMPARE(barValue(page, "temp_progressBar"), temperatureBar);
    const QStringList shown = {value(page, "powerOnHours_param"), value(page, "powerCycles_param"),
        value(page, "avgEraseCount_param"), value(page, "maxEraseCount_param")};
    QCOMPARE(shown, counters);
    QCOMPARE(value(page, "GBWritten_param"), written);

    showPage(page);
    QCOMPARE(graphShowsData(page, QStringLiteral("smart-rows-graph")), written != QLatin1String("NOT SUPPORTED"));
}

void TestGuiDrivePages::otherMakersDriveShowsNothing()
{
    setReadInterval(60000);
    System::System system;
    Smart::SmartManager manager(&system);
    Drive* ours = makeDrive(1, QStringLiteral("BRANTEL SSD 480G"));
    Drive* theirs = makeDrive(2, QStringLiteral("OTHERCORP NVME 1TB"));
    system.addDrive(ours);
    system.addDrive(theirs);
    system.setCurrentDrive(1);

    // The service reports the same attributes for both; only the maker's drive is decoded.
    for (int id : {1, 2}) {
        Message::Smart message;
        message.set_driveid(quint32(id));
        for (const auto& attribute : SmartTestData::attributes(fullReadOut(90, 40, 100, 10, 20, 15, 700)))
            *message.add_attributes() = attribute;
        manager.handleMessage(Message::Message::Smart, Message::toPayload(message));
    }

    Gui::SmartParametersPage page(&system);
    showPage(page);
    QCOMPARE(value(page, "life_param"), QStringLiteral("90%"));
    QVERIFY(graphShowsData(page, QStringLiteral("smart-ours-graph")));

    system.setCurrentDrive(2);
    for (const char* row : {"life_param", "temp_param", "powerOnHours_param", "powerCycles_param",
             "avgEraseCount_param", "maxEraseCount_param", "GBWritten_param"})
        QCOMPARE(value(page, row), QStringLiteral("NOT SUPPORTED"));
    QCOMPARE(barValue(page, "life_progressBar"), 0);
    QCOMPARE(barValue(page, "temp_progressBar"), 0);
    QVERIFY(!graphShowsData(page, QStringLiteral("smart-theirs-graph")));
}

void TestGuiDrivePages::smartPageIgnoresOtherDrives()
{
    setReadInterval(900000);
    System::System system;
    Drive* first = makeDrive(1, QStringLiteral("BRANTEL SSD 240G"));
    Drive* second = makeDrive(2, QStringLiteral("BRANTEL SSD 480G"));
    system.addDrive(first);
    system.addDrive(second);
    system.setCurrentDrive(1);
    Gui::SmartParametersPage page(&system);

    readOut(first, fullReadOut(50, 30, 1, 1, 1, 1, 1));
    QCOMPARE(value(page, "life_param"), QStringLiteral("50%"));

    system.setCurrentDrive(2);
    readOut(second, fullReadOut(70, 30, 1, 1, 1, 1, 1));
    QCOMPARE(value(page, "life_param"), QStringLiteral("70%"));

    // A read-out of the drive that was left doesn't reach the rows; the current drive's still does.
    readOut(first, fullReadOut(10, 30, 1, 1, 1, 1, 1));
    QCOMPARE(value(page, "life_param"), QStringLiteral("70%"));
    readOut(second, {QStringLiteral("231:") + raw(69)});
    QCOMPARE(value(page, "life_param"), QStringLiteral("69%"));
}

void TestGuiDrivePages::writtenGraphFollowsTheReadInterval_data()
{
    QTest::addColumn<QVariant>("readInterval");
    QTest::addColumn<bool>("drawn");
    QTest::addColumn<int>("graphInterval");

    QTest::newRow("never set") << QVariant() << false << 0;
    QTest::newRow("read-outs off") << QVariant(0) << false << 0;
    QTest::newRow("half a second") << QVariant(500) << true << 1;
    QTest::newRow("one minute") << QVariant(60000) << true << 60;
    QTest::newRow("one hour") << QVariant(3600000) << true << 3600;
    QTest::newRow("negative") << QVariant(-60000) << true << -60;
}

void TestGuiDrivePages::writtenGraphFollowsTheReadInterval()
{
    QFETCH(QVariant, readInterval);
    QFETCH(bool, drawn);
    QFETCH(int, graphInterval);

    setReadInterval(900000);
    System::System system;
    Drive* drive = makeDrive(1, QStringLiteral("BRANTEL SSD 480G"));
    system.addDrive(drive);
    system.setCurrentDrive(1);
    Gui::SmartParametersPage page(&system);
    showPage(page);
    readOut(drive, fullReadOut(90, 40, 100, 10, 20, 15, 700));
    auto* graph = child<TimeGraph>(page, "GBWrittenGraph");
    QCOMPARE(graph->interval(), 900);
    QVERIFY(graphShowsData(page, QStringLiteral("smart-interval-before")));

    setReadInterval(readInterval);
    readOut(drive, fullReadOut(90, 40, 100, 10, 20, 15, 712));

    QCOMPARE(graphShowsData(page, QStringLiteral("smart-interval-after")), drawn);
    if (drawn) {
        QCOMPARE(graph->interval(), graphInterval);
        QCOMPARE(graph->unit(), QStringLiteral("GB"));
    }
    // The figure stands whether or not there is a time axis to draw it on.
    QCOMPARE(value(page, "GBWritten_param"), QStringLiteral("712 GB"));
}

// ---------------------------------------------------------------------------------------------
// Performance page

void TestGuiDrivePages::statusTable_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("statusText");
    QTest::addColumn<int>("bar");
    QTest::addColumn<QString>("toggleText");

    // The bar stands at 40 before; "unchanged" means 40.
    QTest::newRow("running") << int(PerformanceCheck::Running) << "RUNNING" << 40 << "CANCEL";
    QTest::newRow("finished") << int(PerformanceCheck::Finished) << "TEST FINISHED" << 100 << "START";
    QTest::newRow("canceled") << int(PerformanceCheck::Canceled) << "TEST CANCELED" << 40 << "START";
    QTest::newRow("failed") << int(PerformanceCheck::Failed) << "TEST FAILED" << 0 << "START";
    QTest::newRow("idle") << int(PerformanceCheck::Idle) << "" << 0 << "START";
    QTest::newRow("unknown value") << 9 << "" << 0 << "START";
}

void TestGuiDrivePages::statusTable()
{
    QFETCH(int, status);
    QFETCH(QString, statusText);
    QFETCH(int, bar);
    QFETCH(QString, toggleText);

    PerformanceRig rig;
    // Start from the opposite state, so that each cell has to be written.
    const auto start = status == PerformanceCheck::Running ? PerformanceCheck::Failed : PerformanceCheck::Running;
    emit rig.check.statusChanged(start);
    emit rig.check.progressChanged(40);
    QCOMPARE(barValue(rig.page, "progressBar"), 40);

    emit rig.check.statusChanged(static_cast<PerformanceCheck::TestStatus>(status));

    QCOMPARE(text(rig.page, "testStatus"), statusText);
    QCOMPARE(barValue(rig.page, "progressBar"), bar);
    QCOMPARE(child<QPushButton>(rig.page, "toggleTest")->text(), toggleText);
}

void TestGuiDrivePages::clockTexts_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("expected");

    QTest::newRow("zero") << 0 << "0:00";
    QTest::newRow("seconds") << 7 << "0:07";
    QTest::newRow("75 s") << 75 << "1:15";
    QTest::newRow("ten minutes") << 600 << "10:00";
    QTest::newRow("last second of the hour") << 3599 << "59:59";
    QTest::newRow("an hour wraps") << 3600 << "0:00";
    QTest::newRow("an hour and 75 s") << 3675 << "1:15";
}

void TestGuiDrivePages::clockTexts()
{
    QFETCH(int, seconds);
    QFETCH(QString, expected);

    PerformanceRig rig;
    emit rig.check.remainingTimeChanged(1);
    emit rig.check.elapsedTimeChanged(seconds);
    QCOMPARE(text(rig.page, "elapsedTime"), expected);
    QCOMPARE(text(rig.page, "remainingTime"), QStringLiteral("0:01"));

    emit rig.check.elapsedTimeChanged(2);
    emit rig.check.remainingTimeChanged(seconds);
    QCOMPARE(text(rig.page, "remainingTime"), expected);
    QCOMPARE(text(rig.page, "elapsedTime"), QStringLiteral("0:02"));
}

void TestGuiDrivePages::resultTexts_data()
{
    QTest::addColumn<bool>("hasResult");
    QTest::addColumn<double>("read");   // MB/s; negative: the result is reset after
    QTest::addColumn<double>("write");
    QTest::addColumn<QString>("readText");
    QTest::addColumn<QString>("writeText");

    QTest::newRow("figures") << true << 523.456 << 411.0 << "523.46 MB/s" << "411.00 MB/s";
    QTest::newRow("small figures") << true << 0.004 << 1e-9 << "0.00 MB/s" << "0.00 MB/s";
    QTest::newRow("fast drive") << true << 6891.1251 << 5002.999 << "6891.13 MB/s" << "5003.00 MB/s";
    QTest::newRow("reset result") << true << -1.0 << -1.0 << "" << "";
    QTest::newRow("no result") << false << 0.0 << 0.0 << "" << "";
}

void TestGuiDrivePages::resultTexts()
{
    QFETCH(bool, hasResult);
    QFETCH(double, read);
    QFETCH(double, write);
    QFETCH(QString, readText);
    QFETCH(QString, writeText);

    PerformanceRig rig;
    auto* result = new PerformanceResult;
    result->setReadSpeed(1.0);
    result->setWriteSpeed(2.0);
    rig.system.drive(1)->setPerformanceResult(result);
    emit rig.check.resultChanged();
    QCOMPARE(text(rig.page, "readResult"), QStringLiteral("1.00 MB/s"));
    QCOMPARE(text(rig.page, "writeResult"), QStringLiteral("2.00 MB/s"));

    result->reset();
    if (hasResult && read >= 0) {
        result->setReadSpeed(read);
        result->setWriteSpeed(write);
    } else if (!hasResult) {
        // Another drive, which has never been measured, becomes the current one.
        rig.system.addDrive(makeDrive(2, QStringLiteral("BRANTEL SSD 960G")));
        rig.system.setCurrentDrive(2);
        QVERIFY(!rig.check.currentResult());
    }
    emit rig.check.resultChanged();

    QCOMPARE(text(rig.page, "readResult"), readText);
    QCOMPARE(text(rig.page, "writeResult"), writeText);
}

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

void TestGuiDrivePages::cancelLeavesTheBarEmpty()
{
    PerformanceRig rig;
    rig.click("toggleTest");
    for (int i = 0; i < 3; ++i)
        rig.round(5, 300e6, 200e6);
    QCOMPARE(barValue(rig.page, "progressBar"), 30);

    rig.click("toggleTest");
    QVERIFY(!rig.check.isRunning());
    QCOMPARE(text(rig.page, "testStatus"), QStringLiteral("TEST CANCELED"));
    QCOMPARE(barValue(rig.page, "progressBar"), 0);
    QCOMPARE(text(rig.page, "testProgress"), QStringLiteral("0%"));
    QCOMPARE(text(rig.page, "elapsedTime"), QStringLiteral("0:00"));
    QCOMPARE(text(rig.page, "remainingTime"), QStringLiteral("0:00"));
    QCOMPARE(child<QPushButton>(rig.page, "toggleTest")->text(), QStringLiteral("START"));
    QCOMPARE(text(rig.page, "readResult"), QString());

    // The round that was under way still comes back; the page stays as it is.
    rig.round(5, 900e6, 900e6);
    QCOMPARE(barValue(rig.page, "progressBar"), 0);
    QCOMPARE(text(rig.page, "testStatus"), QStringLiteral("TEST CANCELED"));

    // A second click starts anew.
    rig.click("toggleTest");
    QVERIFY(rig.check.isRunning());
    QCOMPARE(text(rig.page, "testStatus"), QStringLiteral("RUNNING"));
}

void TestGuiDrivePages::captionColourOfTheResultLabels()
{
    PerformanceRig rig;
    for (const char* name : {"label", "label_2"}) {
        QLabel* caption = child<QLabel>(rig.page, name);
        caption->ensurePolished();
        QCOMPARE(caption->palette().color(caption->foregroundRole()), QColor(140, 150, 195));
    }
    // The figures beside them keep the page's white.
    QLabel* figure = child<QLabel>(rig.page, "readResult");
    figure->ensurePolished();
    QCOMPARE(figure->palette().color(figure->foregroundRole()), QColor(Qt::white));
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
    QTest::newRow("maker's drive before the first answer")
        << ours << "S9FM02.1" << QString() << QString() << ours << "S9FM02.1" << none << false << false;
    QTest::newRow("maker's drive, same version with an address")
        << ours << "S9FM02.1" << "S9FM02.1" << url << ours << "S9FM02.1" << "S9FM02.1" << true << false;
    QTest::newRow("maker's drive, newer version with an address")
        << ours << "S9FM02.1" << "S9FM02.3" << url << ours << "S9FM02.1" << "S9FM02.3" << true << true;
    QTest::newRow("maker's drive, newer version without an address")
        << ours << "S9FM02.1" << "S9FM02.3" << QString() << ours << "S9FM02.1" << "S9FM02.3" << true << false;
    QTest::newRow("listed drive before the first answer")
        << "SSD X 240G" << "XF12" << QString() << QString() << "SSD X 240G" << "XF12" << none << false << false;
    QTest::newRow("other maker's drive")
        << "OTHERCORP NVME 1TB" << "2B2QEXM7" << QString() << QString() << "OTHERCORP NVME 1TB" << "2B2QEXM7"
        << none << true << false;
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

void TestGuiDrivePages::updateButtonOpensTheFirmwarePage()
{
    System::System system;
    Update::FirmwareUpdate firmwareUpdate(&system, nullptr, nullptr);
    Drive* drive = makeDrive(1, QStringLiteral("BRANTEL SSD 480G"), QStringLiteral("S9FM02.1"));
    system.addDrive(drive);
    system.setCurrentDrive(1);
    Gui::FirmwareUpdatePage page(&firmwareUpdate, &system);
    showPage(page);
    auto* button = child<QPushButton>(page, "firmwareUpdatePushButton");

    const QString address = QStringLiteral("https://downloads.example.test/ssd/firmware?model=480G&v=S9FM02.3");
    drive->setNewestFirmwareUrl(address);
    // An address alone is no update yet.
    QVERIFY(!button->isEnabled());
    drive->setNewestFirmwareVersion(QStringLiteral("S9FM02.3"));
    QVERIFY(button->isEnabled());

    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(m_browser.opened, QList<QUrl>{QUrl(address)});

    // Once the drive runs the newest firmware the button goes out again.
    drive->setFirmwareVersion(QStringLiteral("S9FM02.3"));
    emit firmwareUpdate.firmwareUpdateCheckFinished();
    QVERIFY(!button->isEnabled());
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(m_browser.opened.size(), 1);
}

void TestGuiDrivePages::checkButtonAsksForTheMakersDrives()
{
    System::System system;
    Update::FirmwareUpdate firmwareUpdate(&system, nullptr, nullptr);
    system.addDrive(makeDrive(1, QStringLiteral("BRANTEL SSD 480G")));
    system.addDrive(makeDrive(2, QStringLiteral("OTHERCORP NVME 1TB")));
    system.setCurrentDrive(2);
    Gui::FirmwareUpdatePage page(&firmwareUpdate, &system);

    LogCapture log;
    QTest::mouseClick(child<QPushButton>(page, "pushButton_checkForUpdates"), Qt::LeftButton);
    QCOMPARE(log.count(QStringLiteral("Refreshing firmware update information for all drives")), 1);
    QCOMPARE(log.countStartingWith(QStringLiteral("Requesting newest firmware version from server for drive: ")), 1);
    QCOMPARE(log.count(QStringLiteral("Requesting newest firmware version from server for drive: BRANTEL SSD 480G")), 1);
}

void TestGuiDrivePages::finishedCheckRefreshesThePage()
{
    System::System system;
    Update::FirmwareUpdate firmwareUpdate(&system, nullptr, nullptr);
    system.addDrive(makeDrive(1, QStringLiteral("SSD X 240G"), QStringLiteral("XF12")));
    system.setCurrentDrive(1);
    Gui::FirmwareUpdatePage page(&firmwareUpdate, &system);
    // Not recognised yet: nothing to wait for.
    QVERIFY(analysisTime(text(page, "label_analyzedTime")).isValid());

    // The list of the maker's drives arrives without a word to the page; the end of a check
    // brings the page up to date.
    System::SupportedDrivesManager::instance()->setSupportedDrives(
        {System::SupportedDrive(QStringLiteral("SSDX"), QStringLiteral("XF"), QStringLiteral("B"))});
    QVERIFY(analysisTime(text(page, "label_analyzedTime")).isValid());
    emit firmwareUpdate.firmwareUpdateCheckFinished();
    QCOMPARE(text(page, "label_analyzedTime"), QStringLiteral("NO DATA"));
}

// ---------------------------------------------------------------------------------------------
// The three pages with the figures of a real drive, saved for a look by eye.

void TestGuiDrivePages::pagesOnScreen()
{
    setReadInterval(300000);
    System::System system;
    Drive* drive = makeDrive(1, QStringLiteral("BRANTEL SSD 480G"), QStringLiteral("EXFM02.1"));
    system.addDrive(drive);
    system.setCurrentDrive(1);

    // Ten hours of a working day, a read-out every 5 minutes, the writes growing by fits and starts.
    const QDateTime end(QDate(2026, 11, 23), QTime(19, 0));
    const int points = 120;
    quint64 written = 15200;
    for (int i = 0; i < points; ++i) {
        written += (i % 17 < 5) ? 9 : 1;
        readOut(drive, fullReadOut(87, 41, 12345 + i / 4, 678, 150, 120, written));
    }
    QList<Smart::SmartHistoryPoint*>* history = drive->smartController()->parameterHistory(Smart::GBWritten);
    for (int i = 0; i < history->size(); ++i)
        history->at(i)->time = end.addSecs(-300 * i);

    Gui::SmartParametersPage smartPage(&system);
    showPage(smartPage);
    const QImage smartShot = grabWidget(smartPage, QStringLiteral("page-smart"));
    QCOMPARE(smartShot.pixelColor(4, 4), PageBackground);
    QVERIFY(graphShowsData(smartPage, QStringLiteral("page-smart-graph")));

    PerformanceCheck check(&system);
    QDateTime now(QDate(2026, 11, 23), QTime(12, 0));
    check.setClock([&now] { return now; });
    Gui::PerformanceCheckPage performancePage(&check);
    showPage(performancePage);
    check.startTest();
    for (int i = 0; i < 6; ++i) {
        now = now.addSecs(7);
        check.handleMessage(Message::Message::DiskBenchmarkResponse, benchmarkAnswer(1, 540.12e6, 498.7e6));
        QCoreApplication::processEvents();
    }
    const QImage performanceShot = grabWidget(performancePage, QStringLiteral("page-performance"));
    QCOMPARE(performanceShot.pixelColor(4, 4), PageBackground);
    QVERIFY(containsColor(performanceShot, FirstLit));
    for (int i = 6; i < PerformanceCheck::Rounds; ++i) {
        now = now.addSecs(7);
        check.handleMessage(Message::Message::DiskBenchmarkResponse, benchmarkAnswer(1, 540.12e6, 498.7e6));
        QCoreApplication::processEvents();
    }
    QCOMPARE(text(performancePage, "readResult"), QStringLiteral("540.12 MB/s"));
    grabWidget(performancePage, QStringLiteral("page-performance-finished"));

    Update::FirmwareUpdate firmwareUpdate(&system, nullptr, nullptr);
    drive->setNewestFirmwareVersion(QStringLiteral("EXFM02.3"));
    drive->setNewestFirmwareUrl(QStringLiteral("https://downloads.example.test/EXFM02.3"));
    Gui::FirmwareUpdatePage firmwarePage(&firmwareUpdate, &system);
    showPage(firmwarePage);
    const QImage firmwareShot = grabWidget(firmwarePage, QStringLiteral("page-firmware"));
    QCOMPARE(firmwareShot.pixelColor(4, 4), PageBackground);
}

KESTRAVIN_GUI_TEST_MAIN(TestGuiDrivePages)
#include "tst_gui_drivepages.moc"
