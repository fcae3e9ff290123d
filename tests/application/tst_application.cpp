#include "application/Application.h"
#include "platform/XdgAutostart.h"
#include "settings/SettingsManager.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QAction>
#include <QFile>
#include <QMenu>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using Velmora::Application::Application;
using Velmora::Application::TrayNotifications;
using Velmora::Settings::SettingsManager;

namespace {

// Remembers the autostart state instead of touching the session's autostart folder.
class RememberedAutostart : public Velmora::Platform::Autostart
{
public:
    static bool enabled;
    static QList<bool> writes;
    bool isEnabled() const override { return enabled; }
    void setEnabled(bool on) override
    {
        enabled = on;
        writes << on;
    }
};
bool RememberedAutostart::enabled = true;
QList<bool> RememberedAutostart::writes;

struct Shown {
    QString message;
    int kind;
};

} // namespace

class TestApplication : public QObject
{
    Q_OBJECT

private slots:
    void queuesByPriority();
    void remembersTheDataOfTheShownMessage();
    void clickOnADriveMessageOpensItsPage();
    void clickWithoutDataOnlyShowsTheWindow();
    void autostartStateBecomesTheSetting();
    void trayMenuHasShowAndQuit();
    void recognisesTheMinimizedOption_data();
    void recognisesTheMinimizedOption();
    void writesAndReadsTheAutostartEntry();
};

void TestApplication::queuesByPriority()
{
    TrayNotifications queue;
    queue.setInterval(50);
    QList<Shown> shown;
    connect(&queue, &TrayNotifications::messageShown, this,
        [&](const QString& title, const QString& message, TrayNotifications::Kind kind, int msecs) {
            QCOMPARE(title, QStringLiteral("KESTRAVIN"));
            QCOMPARE(msecs, 10000);
            shown.append({message, kind});
        });
    queue.enqueue(TrayNotifications::Information, QStringLiteral("info"), QVariant());
    queue.enqueue(TrayNotifications::Warning, QStringLiteral("warning"), QVariant());
    queue.enqueue(TrayNotifications::Critical, QStringLiteral("critical"), QVariant());
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.at(0).message, QStringLiteral("info"));
    QTRY_COMPARE(shown.size(), 2);
    QCOMPARE(shown.at(1).message, QStringLiteral("critical"));
    QCOMPARE(shown.at(1).kind, int(TrayNotifications::Critical));
    QTRY_COMPARE(shown.size(), 3);
    QCOMPARE(shown.at(2).message, QStringLiteral("warning"));
    QTest::qWait(120);
    QCOMPARE(shown.size(), 3);
    QVERIFY(queue.currentData().isNull());
}

void TestApplication::remembersTheDataOfTheShownMessage()
{
    TrayNotifications queue;
    queue.setInterval(10000);
    queue.enqueue(TrayNotifications::Critical, QStringLiteral("LOW FREE SPACE ON DRIVE X."), QVariant(3));
    queue.enqueue(TrayNotifications::Critical, QStringLiteral("next"), QVariant(4));
    QCOMPARE(queue.currentData(), QVariant(3));
    // Clicking a message away shows the next one at once.
    queue.stopWaiting();
    queue.showMessage();
    QCOMPARE(queue.currentData(), QVariant(4));
}

void TestApplication::clickOnADriveMessageOpensItsPage()
{
    auto* app = qobject_cast<Application*>(qApp);
    QStringList journal;
    QMetaObject::Connection a = connect(app, &Application::setCurrentDrive, this,
        [&](int id) { journal << QStringLiteral("drive %1").arg(id); });
    QMetaObject::Connection b = connect(app, &Application::showDriveStatusPage, this, [&] { journal << "status page"; });
    QMetaObject::Connection c = connect(app, &Application::showMainWindow, this, [&] { journal << "window"; });

    app->notifications()->setInterval(10000);
    app->showSystemTrayCriticalMessage(QStringLiteral("LOW LIFE REMAINING ON DRIVE X."), QVariant(7));
    app->showSystemTrayWarningMessage(QStringLiteral("later"));
    QSignalSpy shown(app->notifications(), &TrayNotifications::messageShown);
    emit app->trayIcon()->messageClicked();
    QCOMPARE(journal, (QStringList{"drive 7", "status page", "window"}));
    QCOMPARE(shown.count(), 1);
    QCOMPARE(shown.at(0).at(1).toString(), QStringLiteral("later"));
    disconnect(a);
    disconnect(b);
    disconnect(c);
    app->notifications()->stopWaiting();
}

void TestApplication::clickWithoutDataOnlyShowsTheWindow()
{
    auto* app = qobject_cast<Application*>(qApp);
    app->notifications()->stopWaiting();
    app->showSystemTrayInformationMessage(QStringLiteral("update available"));
    QSignalSpy drive(app, &Application::setCurrentDrive);
    QSignalSpy window(app, &Application::showMainWindow);
    emit app->trayIcon()->messageClicked();
    QCOMPARE(drive.count(), 0);
    QCOMPARE(window.count(), 1);

    // A single click on the icon does nothing, a double click shows the window.
    emit app->trayIcon()->activated(QSystemTrayIcon::Trigger);
    QCOMPARE(window.count(), 1);
    emit app->trayIcon()->activated(QSystemTrayIcon::DoubleClick);
    QCOMPARE(window.count(), 2);
    app->notifications()->stopWaiting();
}

void TestApplication::autostartStateBecomesTheSetting()
{
    QCOMPARE(SettingsManager::value(QStringLiteral("Application"), QStringLiteral("StartOnSystemStartup")).toBool(), true);
    RememberedAutostart::writes.clear();
    SettingsManager::setValue(QStringLiteral("Application"), QStringLiteral("StartOnSystemStartup"), false);
    SettingsManager::setValue(QStringLiteral("application"), QStringLiteral("StartOnSystemStartup"), true);
    QCOMPARE(RememberedAutostart::writes, QList<bool>{false});
}

void TestApplication::trayMenuHasShowAndQuit()
{
    auto* app = qobject_cast<Application*>(qApp);
    QStringList texts;
    for (QAction* action : app->trayMenu()->actions())
        texts << (action->isSeparator() ? QStringLiteral("|") : action->text());
    QCOMPARE(texts, (QStringList{"Show", "|", "Quit"}));
    QVERIFY(!app->quitOnLastWindowClosed());
}

void TestApplication::recognisesTheMinimizedOption_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("minimized");
    QTest::newRow("alone") << QStringList{"kestravin", "-minimized"} << true;
    QTest::newRow("among others") << QStringList{"kestravin", "-style", "fusion", "-minimized", "x"} << true;
    QTest::newRow("other case") << QStringList{"kestravin", "-Minimized"} << false;
    QTest::newRow("program name does not count") << QStringList{"-minimized"} << false;
    QTest::newRow("none") << QStringList{"kestravin"} << false;
}

void TestApplication::recognisesTheMinimizedOption()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, minimized);
    QCOMPARE(Application::hasMinimizedOption(arguments), minimized);
}

void TestApplication::writesAndReadsTheAutostartEntry()
{
    QTemporaryDir dir;
    const QString entry = dir.filePath(QStringLiteral("autostart/KESTRAVIN.desktop"));
    Velmora::Platform::XdgAutostart autostart(entry, QStringLiteral("/opt/kestravin/kestravin"), QStringLiteral("KESTRAVIN"));
    QVERIFY(!autostart.isEnabled());
    autostart.setEnabled(true);
    QVERIFY(autostart.isEnabled());
    QFile file(entry);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("\nExec=\"/opt/kestravin/kestravin\" -minimized\n"));
    file.close();

    // The program moved since the entry was written.
    Velmora::Platform::XdgAutostart moved(entry, QStringLiteral("/usr/bin/kestravin"), QStringLiteral("KESTRAVIN"));
    QVERIFY(!moved.isEnabled());

    autostart.setEnabled(false);
    QVERIFY(!QFile::exists(entry));
    QVERIFY(!autostart.isEnabled());
}

int main(int argc, char* argv[])
{
    TestEnvironment::installConnectionWarningTrap();
    Velmora::Logger::setConsoleEnabled(false);
    Application app(argc, argv, std::make_unique<RememberedAutostart>());
    TestApplication test;
    const int result = QTest::qExec(&test, argc, argv);
    return TestEnvironment::connectionWarningSeen() ? 1 : result;
}

#include "tst_application.moc"
