#include "application/Application.h"
#include "communicationweb/TarnAuthorizationService.h"
#include "download/DownloadManager.h"
#include "gui/MainWindow.h"
#include "gui/MenuBar.h"
#include "gui/views/AboutWidget.h"
#include "gui/widgets/ParamValueWidget.h"
#include "logger/Logger.h"
#include "platform/XdgAutostart.h"
#include "rest/RestClient.h"
#include "settings/GeneralSettings.h"
#include "settings/SettingsManager.h"
#include "settings/SmartSettings.h"
#include "support/TestEnvironment.h"
#include "system/System.h"
#include "update/UpdateSettingsWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

using namespace Velmora;
using Settings::SettingsManager;

namespace {

struct WebParts {
    REST::RestClient restClient { QUrl(QStringLiteral("https://127.0.0.1:9/kestravin/public/api/")) };
    CommunicationWeb::TarnAuthorizationService authorization { &restClient };
    Download::DownloadManager downloads;
    Update::ApplicationUpdate applicationUpdate { &restClient, &authorization, &downloads };
};

// What a control shows: a box its state, a drop-down the data of its item.
QVariant shown(const QWidget* control)
{
    if (const auto* box = qobject_cast<const QCheckBox*>(control))
        return box->isChecked();
    return qobject_cast<const QComboBox*>(control)->currentData();
}

QString settingsFile()
{
    return QSettings(QStringLiteral("BRANTEL"), QStringLiteral("KESTRAVIN")).fileName();
}

} // namespace

class TestSettingsPages : public QObject
{
    Q_OBJECT

private slots:
    // value() syncs, so that the clearing is in the file before a test edits it by hand.
    void init() { SettingsManager::clear(), SettingsManager::value(QStringLiteral("SMART"), QStringLiteral("ReadInterval")); }
    void eachChangeStoresItsOwnKeyOnly_data();
    void eachChangeStoresItsOwnKeyOnly();
    void storedValueOutsideTheListIsNotWritten_data();
    void storedValueOutsideTheListIsNotWritten();
    void autostartEntryFollowsTheBox();
    void updateStatusesShowTheirControls_data();
    void updateStatusesShowTheirControls();
    void settingsPageListsCategoriesAndLeadsToAbout();
};

void TestSettingsPages::eachChangeStoresItsOwnKeyOnly_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("updates check off") << "enableUpdates" << "DisableUpdates" << QVariant(true);
    QTest::newRow("language") << "comboBox_language" << "Language" << QVariant(QStringLiteral("uk"));
}

void TestSettingsPages::eachChangeStoresItsOwnKeyOnly()
{
    QFETCH(QString, control);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    Settings::GeneralSettings general;
    QWidget* widget = general.widget();
    auto* hint = widget->findChild<QLabel*>(QStringLiteral("label_languageChangeInfo"));
    QSignalSpy stored(SettingsManager::instance(), &SettingsManager::settingsChanged);

    if (auto* box = widget->findChild<QCheckBox*>(control))
        box->click();
    else
        widget->findChild<QComboBox*>(control)->setCurrentIndex(3);

    QCOMPARE(stored.count(), 1);
    QCOMPARE(stored.at(0), (QVariantList { QStringLiteral("Application"), key, value }));
    QCOMPARE(!hint->isHidden(), key == QLatin1String("Language"));
}

void TestSettingsPages::storedValueOutsideTheListIsNotWritten_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("control");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("language not offered") << QByteArray("[Application]\nLanguage=de\n") << "comboBox_language"
                                          << QVariant(QStringLiteral("en"));
    QTest::newRow("language a list") << QByteArray("[Application]\nLanguage=uk, pl\n") << "comboBox_language"
                                     << QVariant(QStringLiteral("en"));
    QTest::newRow("updates flag garbage") << QByteArray("[Application]\nDisableUpdates=maybe\n") << "enableUpdates"
                                          << QVariant(true);
    QTest::newRow("interval not offered") << QByteArray("[SMART]\nReadInterval=900001\n")
                                          << "comboBox_tempReadoutInterval" << QVariant(0);
    QTest::newRow("interval garbage") << QByteArray("[SMART]\nReadInterval=often\n") << "comboBox_tempReadoutInterval"
                                      << QVariant(900000);
    QTest::newRow("last interval") << QByteArray("[SMART]\nReadInterval=3600000\n") << "comboBox_tempReadoutInterval"
                                   << QVariant(3600000);
}

void TestSettingsPages::storedValueOutsideTheListIsNotWritten()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, control);
    QFETCH(QVariant, expected);
    // As if edited by hand; kept apart from the rest so that nothing else in it can be lost.
    const QByteArray edited = file + "[MainWindow]\nisMaximized=true\n";
    QFile settings(settingsFile());
    QVERIFY(settings.open(QIODevice::WriteOnly | QIODevice::Truncate));
    settings.write(edited);
    settings.close();
    QSignalSpy stored(SettingsManager::instance(), &SettingsManager::settingsChanged);

    Settings::GeneralSettings general;
    Settings::SmartSettings smart;
    const QWidget* shownControl = general.widget()->findChild<QWidget*>(control);
    QCOMPARE(shown(shownControl ? shownControl : smart.widget()->findChild<QWidget*>(control)), expected);
    QCOMPARE(stored.count(), 0);
    QVERIFY(settings.open(QIODevice::ReadOnly));
    QCOMPARE(settings.readAll(), edited);
}

void TestSettingsPages::autostartEntryFollowsTheBox()
{
    const std::unique_ptr<Platform::Autostart> entry = Platform::createAutostart();
    const QString path = static_cast<Platform::XdgAutostart&>(*entry).entryPath();
    Settings::GeneralSettings general;
    auto* box = general.widget()->findChild<QCheckBox*>(QStringLiteral("startOnSystemStartup"));
    QVERIFY(!QFile::exists(path));

    box->click();
    QVERIFY(entry->isEnabled());
    QCOMPARE(SettingsManager::value(QStringLiteral("Application"), QStringLiteral("StartOnSystemStartup")), QVariant(true));
    box->click();
    QVERIFY(!QFile::exists(path));
}

void TestSettingsPages::updateStatusesShowTheirControls_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("updateButton");
    QTest::addColumn<bool>("progress");
    QTest::newRow("update available") << int(Update::UpdateAvailable) << "1.2.0" << "UPDATE APPLICATION" << false;
    QTest::newRow("unknown") << int(Update::Unknown) << "DATA NOT AVAILABLE" << QString() << false;
    QTest::newRow("downloading") << int(Update::Downloading) << "DOWNLOADING UPDATE" << QString() << true;
    QTest::newRow("download failed") << int(Update::DownloadFailed) << "UPDATE FAILED, PLEASE RETRY"
                                     << "UPDATE APPLICATION" << false;
    QTest::newRow("installer started") << int(Update::InstallerStarted) << "1.2.0" << "RESTART UPDATE DOWNLOAD" << false;
    QTest::newRow("checking") << int(Update::Checking) << "COLLECTING DATA" << QString() << false;
}

void TestSettingsPages::updateStatusesShowTheirControls()
{
    QFETCH(int, status);
    QFETCH(QString, text);
    QFETCH(QString, updateButton);
    QFETCH(bool, progress);
    WebParts web;
    Update::UpdateSettingsWidget widget(&web.applicationUpdate);
    emit web.applicationUpdate.applicationUpdateStatusChanged(Update::ApplicationUpdateStatus(status), "1.2.0");
    emit web.applicationUpdate.downloadProgressChanged(42.4, 1.5 * 1024 * 1024);

    QCOMPARE(widget.findChild<Gui::ParamValueWidget*>(QStringLiteral("availableVersion"))->value(), text);
    auto* button = widget.findChild<QPushButton*>(QStringLiteral("pushButton_updateApplication"));
    QCOMPARE(button->isHidden() ? QString() : button->text(), updateButton);
    QCOMPARE(!widget.findChild<QWidget*>(QStringLiteral("downloadProgress"))->isHidden(), progress);
    QCOMPARE(widget.findChild<QProgressBar*>()->value(), 42);
    QCOMPARE(widget.findChild<QLabel*>(QStringLiteral("label_speed"))->text(), QStringLiteral("1.50 MB/s"));
    QVERIFY(widget.findChild<Gui::ParamValueWidget*>(QStringLiteral("applicationVersion"))->value().startsWith("1.1.4"));
}

void TestSettingsPages::settingsPageListsCategoriesAndLeadsToAbout()
{
    System::System system;
    WebParts web;
    Gui::MainWindow::Collaborators collaborators;
    collaborators.system = &system;
    collaborators.applicationUpdate = &web.applicationUpdate;
    Gui::MainWindow window(collaborators);
    window.resize(1366, 768);
    window.show();
    window.findChild<Gui::MenuBar*>()->button(Gui::Page::SettingsId)->click();

    QStringList titles;
    for (const QGroupBox* box : window.findChildren<QGroupBox*>())
        titles << box->title();
    QCOMPARE(titles, (QStringList { "GENERAL", "S.M.A.R.T.", "UPDATE" }));
    QVERIFY(!window.findChild<Gui::AboutWidget*>());
    window.findChild<QPushButton*>(QStringLiteral("pushButton_about"))->click();
    QVERIFY(window.findChild<Gui::AboutWidget*>()->isVisible());
}

int main(int argc, char* argv[])
{
    TestEnvironment::installConnectionWarningTrap();
    Velmora::Logger::setConsoleEnabled(false);
    // The program's own application object, with the platform's autostart entry in the test home.
    Velmora::Application::Application app(argc, argv);
    app.finishLoadingFirstFonts();
    TestSettingsPages test;
    const int result = QTest::qExec(&test, argc, argv);
    return TestEnvironment::connectionWarningSeen() ? 1 : result;
}

#include "tst_settingspages.moc"
