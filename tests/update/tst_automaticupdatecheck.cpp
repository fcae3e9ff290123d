#include "settings/SettingsManager.h"
#include "support/TestEnvironment.h"
#include "system/System.h"
#include "update/AutomaticUpdateCheck.h"
#include "update/UpdateInterface.h"

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

    void settingSwitchesChecks_data();
    void settingSwitchesChecks();

private:
    AutomaticUpdateCheck* make(int enableDelay, int periodic, int driveChangeDelay);

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

void TestAutomaticUpdateCheck::settingSwitchesChecks_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("active");

    QTest::newRow("enabled by false") << Group << Key << QVariant(false) << true;
    QTest::newRow("another key") << Group << QStringLiteral("Language") << QVariant(false) << false;
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

KESTRAVIN_TEST_MAIN(TestAutomaticUpdateCheck)
#include "tst_automaticupdatecheck.moc"
