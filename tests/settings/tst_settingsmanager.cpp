#include "settings/SettingsManager.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QFile>
#include <QFileInfo>
#include <QRect>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

#include <thread>
#include <vector>

using Velmora::Settings::SettingsManager;

class TestSettingsManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void init() { SettingsManager::clear(); }

    void signalsOnlyRealChanges_data();
    void signalsOnlyRealChanges();
    void writesMissingKeyEqualToTheDefault();
    void unknownGroupGivesTheDefaultAndCreatesNothing();
    void clearRemovesEverythingSilently();
    void storesUnderTheProgramsOwnNames();
    void readsWhatAnotherProcessWrote();
    void keepsGroupsApartAcrossThreads();
};

void TestSettingsManager::signalsOnlyRealChanges_data()
{
    QTest::addColumn<QVariant>("first");
    QTest::addColumn<QVariant>("second");
    QTest::addColumn<int>("emissions");

    QTest::newRow("same int") << QVariant(900000) << QVariant(900000) << 1;
    QTest::newRow("other int") << QVariant(900000) << QVariant(300000) << 2;
    QTest::newRow("same bool") << QVariant(true) << QVariant(true) << 1;
    QTest::newRow("bool flipped") << QVariant(true) << QVariant(false) << 2;
    QTest::newRow("same text") << QVariant(QStringLiteral("en")) << QVariant(QStringLiteral("en")) << 1;
    QTest::newRow("same rectangle") << QVariant(QRect(10, 20, 1280, 1024)) << QVariant(QRect(10, 20, 1280, 1024)) << 1;
    QTest::newRow("moved rectangle") << QVariant(QRect(10, 20, 1280, 1024)) << QVariant(QRect(11, 20, 1280, 1024)) << 2;
}

void TestSettingsManager::signalsOnlyRealChanges()
{
    QFETCH(QVariant, first);
    QFETCH(QVariant, second);
    QFETCH(int, emissions);

    QSignalSpy spy(SettingsManager::instance(), &SettingsManager::settingsChanged);
    LogCapture log;
    SettingsManager::setValue(QStringLiteral("SMART"), QStringLiteral("ReadInterval"), first);
    SettingsManager::setValue(QStringLiteral("SMART"), QStringLiteral("ReadInterval"), second);

    QCOMPARE(spy.count(), emissions);
    QCOMPARE(spy.last(), (QList<QVariant>{QStringLiteral("SMART"), QStringLiteral("ReadInterval"), emissions == 1 ? first : second}));
    // The line is written whether or not anything changes.
    QCOMPARE(log.messages(Velmora::Logger::Debug),
        (QStringList{QStringLiteral("Settings: set SMART:ReadInterval = %1").arg(first.toString()),
            QStringLiteral("Settings: set SMART:ReadInterval = %1").arg(second.toString())}));
    QCOMPARE(SettingsManager::value(QStringLiteral("SMART"), QStringLiteral("ReadInterval")), second);
}

void TestSettingsManager::writesMissingKeyEqualToTheDefault()
{
    QSignalSpy spy(SettingsManager::instance(), &SettingsManager::settingsChanged);
    QCOMPARE(SettingsManager::value(QStringLiteral("Application"), QStringLiteral("DisableUpdates"), false), QVariant(false));
    QVERIFY(!SettingsManager::contains(QStringLiteral("Application"), QStringLiteral("DisableUpdates")));

    SettingsManager::setValue(QStringLiteral("Application"), QStringLiteral("DisableUpdates"), false);
    QCOMPARE(spy.count(), 1);
    QVERIFY(SettingsManager::contains(QStringLiteral("Application"), QStringLiteral("DisableUpdates")));
}

void TestSettingsManager::unknownGroupGivesTheDefaultAndCreatesNothing()
{
    QCOMPARE(SettingsManager::value(QStringLiteral("Nowhere"), QStringLiteral("Key"), 42), QVariant(42));
    QVERIFY(!SettingsManager::contains(QStringLiteral("Nowhere"), QStringLiteral("Key")));
    QSettings direct(QStringLiteral("BRANTEL"), QStringLiteral("KESTRAVIN"));
    QVERIFY(!direct.childGroups().contains(QStringLiteral("Nowhere")));
}

void TestSettingsManager::clearRemovesEverythingSilently()
{
    SettingsManager::setValue(QStringLiteral("Application"), QStringLiteral("Language"), QStringLiteral("pl"));
    QSignalSpy spy(SettingsManager::instance(), &SettingsManager::settingsChanged);
    LogCapture log;
    SettingsManager::clear();
    QCOMPARE(spy.count(), 0);
    QCOMPARE(log.messages(), QStringList{QStringLiteral("Clear settings")});
    QCOMPARE(SettingsManager::value(QStringLiteral("Application"), QStringLiteral("Language"), QStringLiteral("en")),
        QVariant(QStringLiteral("en")));
}

void TestSettingsManager::storesUnderTheProgramsOwnNames()
{
    SettingsManager::setValue(QStringLiteral("Application"), QStringLiteral("AdvShowTreshold"), 3);
    const QString path = qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/BRANTEL/KESTRAVIN.conf");
    QFile file(path);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(path));
    const QByteArray content = file.readAll();
    QVERIFY(content.contains("[Application]"));
    QVERIFY(content.contains("AdvShowTreshold=3"));
}

void TestSettingsManager::readsWhatAnotherProcessWrote()
{
    SettingsManager::setValue(QStringLiteral("SMART"), QStringLiteral("ReadInterval"), 900000);
    const QString path = qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/BRANTEL/KESTRAVIN.conf");
    // Another process rewrites the file; its modification time must differ for QSettings to notice.
    QTest::qWait(1100);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("[SMART]\nReadInterval=600000\n");
    file.close();

    QCOMPARE(SettingsManager::value(QStringLiteral("SMART"), QStringLiteral("ReadInterval")).toInt(), 600000);
}

void TestSettingsManager::keepsGroupsApartAcrossThreads()
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            const QString group = QStringLiteral("Group%1").arg(t);
            for (int i = 0; i < 50; ++i) {
                SettingsManager::setValue(group, QStringLiteral("Key"), i);
                if (SettingsManager::value(group, QStringLiteral("Key")).toInt() != i)
                    qFatal("value of %s read back wrong", qPrintable(group));
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < 4; ++t)
        QCOMPARE(SettingsManager::value(QStringLiteral("Group%1").arg(t), QStringLiteral("Key")).toInt(), 49);
    QSettings direct(QStringLiteral("BRANTEL"), QStringLiteral("KESTRAVIN"));
    QVERIFY(direct.allKeys().filter(QStringLiteral("/Group")).isEmpty());
}

KESTRAVIN_TEST_MAIN(TestSettingsManager)
#include "tst_settingsmanager.moc"
