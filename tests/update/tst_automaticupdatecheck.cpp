#include "settings/SettingsManager.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/System.h"
#include "update/AutomaticUpdateCheck.h"
#include "update/UpdateInterface.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>

using Velmora::Settings::SettingsManager;
using Velmora::Update::AutomaticUpdateCheck;

namespace {

// Writes its name into a shared journal, so that both the count and the order of checks show.
class RecordingUpdate : public Velmora::Update::UpdateInterface
{
public:
    RecordingUpdate(const QString& name, QStringList* journal)
        : m_name(name)
        , m_journal(journal)
    {
    }
    void checkForUpdates() override { m_journal->append(m_name); }

private:
    QString m_name;
    QStringList* m_journal;
};

const QString Group = QStringLiteral("Application");
const QString Key = QStringLiteral("DisableUpdates");
constexpr int Long = 60000;

} // namespace

class TestAutomaticUpdateCheck : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void defaultsAreTheProgramsIntervals();
    void firstCheckFollowsEnablingAfterItsDelay();
    void periodicChecksRepeat();
    void burstOfDriveChangesGivesOneCheck();
    void disabledAtStartChecksNothing();
    void settingSwitchesChecks_data();
    void settingSwitchesChecks();
    void disablingStopsScheduledChecks();
    void enablingTwiceSchedulesTwoChecks();

private:
    AutomaticUpdateCheck* make(int enableDelay, int periodic, int driveChangeDelay);
    void addDrive(int id);

    std::unique_ptr<Velmora::System::System> m_system;
    QStringList m_journal;
    std::unique_ptr<RecordingUpdate> m_application;
    std::unique_ptr<RecordingUpdate> m_firmware;
    std::unique_ptr<AutomaticUpdateCheck> m_check;
};

void TestAutomaticUpdateCheck::init()
{
    SettingsManager::clear();
    m_journal.clear();
    m_system = std::make_unique<Velmora::System::System>();
    m_application = std::make_unique<RecordingUpdate>(QStringLiteral("application"), &m_journal);
    m_firmware = std::make_unique<RecordingUpdate>(QStringLiteral("firmware"), &m_journal);
}

void TestAutomaticUpdateCheck::cleanup()
{
    m_check.reset();
    m_system.reset();
}

AutomaticUpdateCheck* TestAutomaticUpdateCheck::make(int enableDelay, int periodic, int driveChangeDelay)
{
    AutomaticUpdateCheck::Intervals intervals;
    intervals.enableDelay = enableDelay;
    intervals.periodic = periodic;
    intervals.driveChangeDelay = driveChangeDelay;
    m_check = std::make_unique<AutomaticUpdateCheck>(m_system.get(),
        QList<Velmora::Update::UpdateInterface*>{m_application.get(), m_firmware.get()}, nullptr, intervals);
    return m_check.get();
}

void TestAutomaticUpdateCheck::addDrive(int id)
{
    m_system->addDrive(new Velmora::System::Drive(id, QStringLiteral("SSD %1").arg(id), QStringLiteral("S%1").arg(id), QString(),
        QStringLiteral("F1"), Velmora::System::Bytes(qint64(1) << 36), 4, 4, true, QStringLiteral("SATA")));
}

void TestAutomaticUpdateCheck::defaultsAreTheProgramsIntervals()
{
    const AutomaticUpdateCheck::Intervals intervals;
    QCOMPARE(intervals.enableDelay, 5000);
    QCOMPARE(intervals.periodic, 3600000);
    QCOMPARE(intervals.driveChangeDelay, 1000);
}

void TestAutomaticUpdateCheck::firstCheckFollowsEnablingAfterItsDelay()
{
    QElapsedTimer clock;
    clock.start();
    QVERIFY(make(300, Long, Long)->isActive());
    QCoreApplication::processEvents();
    QVERIFY(m_journal.isEmpty());
    QTRY_COMPARE(m_journal.size(), 2);
    QVERIFY2(clock.elapsed() >= 280, qPrintable(QString::number(clock.elapsed())));
    // The application first, the firmware second: the order of the list given.
    QCOMPARE(m_journal, (QStringList{"application", "firmware"}));
    QTest::qWait(200);
    QCOMPARE(m_journal.size(), 2);
}

void TestAutomaticUpdateCheck::periodicChecksRepeat()
{
    make(Long, 100, Long);
    QTRY_VERIFY(m_journal.size() >= 6);
    QCOMPARE(m_journal.mid(0, 4), (QStringList{"application", "firmware", "application", "firmware"}));
}

void TestAutomaticUpdateCheck::burstOfDriveChangesGivesOneCheck()
{
    make(Long, Long, 150);
    addDrive(1);
    addDrive(2);
    QTest::qWait(50);
    m_system->removeDrive(1);
    addDrive(3);
    QVERIFY(m_journal.isEmpty());
    QTRY_COMPARE(m_journal.size(), 2);
    QTest::qWait(300);
    QCOMPARE(m_journal.size(), 2);

    m_system->removeDrive(2);
    QTRY_COMPARE(m_journal.size(), 4);
}

void TestAutomaticUpdateCheck::disabledAtStartChecksNothing()
{
    SettingsManager::setValue(Group, Key, true);
    QVERIFY(!make(50, 50, 50)->isActive());
    addDrive(1);
    m_system->removeDrive(1);
    QTest::qWait(300);
    QVERIFY(m_journal.isEmpty());
}

void TestAutomaticUpdateCheck::settingSwitchesChecks_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("active");

    QTest::newRow("enabled by false") << Group << Key << QVariant(false) << true;
    QTest::newRow("enabled by the text false") << Group << Key << QVariant(QStringLiteral("false")) << true;
    QTest::newRow("another key") << Group << QStringLiteral("Language") << QVariant(false) << false;
    QTest::newRow("group in another case") << QStringLiteral("application") << Key << QVariant(false) << false;
    QTest::newRow("key in another case") << Group << QStringLiteral("disableUpdates") << QVariant(false) << false;
}

void TestAutomaticUpdateCheck::settingSwitchesChecks()
{
    QFETCH(QString, group);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(bool, active);

    SettingsManager::setValue(Group, Key, true);
    make(150, Long, Long);
    SettingsManager::setValue(group, key, value);
    QCOMPARE(m_check->isActive(), active);
    QCoreApplication::processEvents();
    QVERIFY(m_journal.isEmpty());
    if (active)
        QTRY_COMPARE(m_journal.size(), 2);
    else
        QTest::qWait(300);
    QCOMPARE(m_journal.size(), active ? 2 : 0);
}

void TestAutomaticUpdateCheck::disablingStopsScheduledChecks()
{
    make(200, 100, 100);
    addDrive(1);
    SettingsManager::setValue(Group, Key, true);
    QVERIFY(!m_check->isActive());
    QTest::qWait(400);
    QVERIFY(m_journal.isEmpty());

    // Manual checks go to the objects directly and are not affected.
    m_application->checkForUpdates();
    QCOMPARE(m_journal, QStringList{"application"});
}

void TestAutomaticUpdateCheck::enablingTwiceSchedulesTwoChecks()
{
    make(200, Long, Long);
    QTest::qWait(100);
    // The check scheduled at construction outlives the disabling in between; the updates are on
    // again when it fires, so it checks, and so does the one the second enabling scheduled.
    SettingsManager::setValue(Group, Key, true);
    SettingsManager::setValue(Group, Key, false);
    QTRY_COMPARE(m_journal.size(), 4);
    QTest::qWait(300);
    QCOMPARE(m_journal.size(), 4);
}

KESTRAVIN_TEST_MAIN(TestAutomaticUpdateCheck)
#include "tst_automaticupdatecheck.moc"
