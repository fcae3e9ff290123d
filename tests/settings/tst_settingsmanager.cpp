#include "settings/SettingsManager.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QFile>
#include <QFileInfo>
#include <QRect>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>


using Velmora::Settings::SettingsManager;

class TestSettingsManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void init() { SettingsManager::clear(); }

    void signalsOnlyRealChanges_data();
    void signalsOnlyRealChanges();
    void readsWhatAnotherProcessWrote();
};

void TestSettingsManager::signalsOnlyRealChanges_data()
{
    QTest::addColumn<QVariant>("first");
    QTest::addColumn<QVariant>("second");
    QTest::addColumn<int>("emissions");

    QTest::newRow("same int") << QVariant(900000) << QVariant(900000) << 1;
    QTest::newRow("other int") << QVariant(900000) << QVariant(300000) << 2;
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

KESTRAVIN_TEST_MAIN(TestSettingsManager)
#include "tst_settingsmanager.moc"
