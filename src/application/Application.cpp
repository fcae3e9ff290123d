#include "application/Application.h"

#include "gui/ApplicationFonts.h"
#include "logger/Logger.h"
#include "platform/Autostart.h"
#include "settings/SettingsManager.h"
#include "settings/StoredValue.h"
#include "update/ApplicationUpdate.h"

#include <QDirIterator>
#include <QFile>
#include <QFontDatabase>
#include <QImageReader>
#include <QLocale>
#include <QMenu>
#include <QPixmap>
#include <QTranslator>

#include <utility>

namespace Velmora::Application {

using Settings::SettingsManager;

namespace {
const char* const ApplicationGroup = "Application";
const char* const StartOnSystemStartupKey = "StartOnSystemStartup";
const char* const LanguageKey = "Language";
const char* const UnableToLoadTranslation = "Unable to load translations from %1";
const char* const MinimizedOption = "-minimized";
} // namespace

Application::Application(int& argc, char** argv, std::unique_ptr<Platform::Autostart> autostart)
    : QApplication(argc, argv)
    , m_autostart(autostart ? std::move(autostart) : nullptr)
{
    startLoadingFonts();
    setOrganizationName(QStringLiteral("BRANTEL"));
    setApplicationName(QStringLiteral("KESTRAVIN"));
    setApplicationVersion(QLatin1String(Update::ApplicationUpdate::ApplicationVersion));
    if (!m_autostart)
        m_autostart = Platform::createAutostart();

    // The autostart entry is the truth at each start; the setting follows it.
    SettingsManager::setValue(QLatin1String(ApplicationGroup), QLatin1String(StartOnSystemStartupKey),
        m_autostart->isEnabled());
    connect(SettingsManager::instance(), &SettingsManager::settingsChanged, this, &Application::onSettingsChanged);

    m_translator = new QTranslator(this);
    loadTranslation(
        Settings::storedString(QLatin1String(ApplicationGroup), QLatin1String(LanguageKey), QStringLiteral("en")));

    m_notifications = new TrayNotifications(this);
    setQuitOnLastWindowClosed(false);
}

Application::~Application() = default;

bool Application::hasMinimizedOption(const QStringList& arguments)
{
    return arguments.mid(1).contains(QLatin1String(MinimizedOption));
}

void Application::createTray()
{
    // Made only when it is to be shown: a tray icon looks for a desktop bus as it is created, which
    // the first window should not wait for. The icon is read as the PNG it is: finding out what a
    // file is would load every image plugin, and the SVG one with its library.
    QImageReader iconReader(QStringLiteral(":/tray/icon"), "png");
    iconReader.setAutoDetectImageFormat(false);
    const QPixmap icon = QPixmap::fromImage(iconReader.read());
    m_trayMenu = new QMenu;
    connect(m_trayMenu->addAction(tr("Show")), &QAction::triggered, this, &Application::showMainWindow);
    m_trayMenu->addSeparator();
    connect(m_trayMenu->addAction(tr("Quit")), &QAction::triggered, this, &Application::quit);

    m_trayIcon = new QSystemTrayIcon(QIcon(icon), this);
    connect(m_trayIcon, &QSystemTrayIcon::activated, this, &Application::trayIconActivated);
    // Order matters: select the drive, bring the window up, then show the next notification at once.
    connect(m_trayIcon, &QSystemTrayIcon::messageClicked, this, &Application::onTrayMessageClicked);
    connect(m_trayIcon, &QSystemTrayIcon::messageClicked, this, &Application::showMainWindow);
    connect(m_trayIcon, &QSystemTrayIcon::messageClicked, m_notifications, &TrayNotifications::stopWaiting);
    connect(m_trayIcon, &QSystemTrayIcon::messageClicked, m_notifications, &TrayNotifications::showMessage);
    connect(m_notifications, &TrayNotifications::messageShown, m_trayIcon,
        [this](const QString& title, const QString& message, TrayNotifications::Kind kind, int msecs) {
            static const QSystemTrayIcon::MessageIcon icons[] = {
                QSystemTrayIcon::Information, QSystemTrayIcon::Warning, QSystemTrayIcon::Critical};
            m_trayIcon->showMessage(title, message, icons[kind], msecs);
        });
    m_trayIcon->setContextMenu(m_trayMenu);
}

void Application::showTrayIcon()
{
    if (!m_trayIcon)
        createTray();
    m_trayIcon->setVisible(true);
}

void Application::startLoadingFonts()
{
    Gui::initFontResources();
    QStringList firstFaces;
    QDirIterator fonts(QStringLiteral(":/fonts/"));
    while (fonts.hasNext()) {
        const QString path = fonts.next();
        (Gui::isFirstWindowFace(fonts.fileName()) ? firstFaces : m_fontsToLoad).append(path);
    }
    // The font database is thread-safe. Reading the system's fonts and the first faces takes some
    // milliseconds, which the set-up of the program's other parts hides. Without a thread to spare,
    // the faces are loaded when they are waited for.
    m_firstFonts = std::async(std::launch::async | std::launch::deferred, [firstFaces] {
        Gui::waitForFontConfiguration();
        // The system's fonts are read first: a face added to a database not read yet is read a
        // second time when it is.
        const QFontDatabase systemFonts;
        bool loaded = true;
        for (const QString& path : firstFaces)
            loaded = QFontDatabase::addApplicationFont(path) >= 0 && loaded;
        return loaded;
    });
}

void Application::finishLoadingFirstFonts()
{
    if (!m_firstFonts.valid())
        return;
    if (!m_firstFonts.get())
        m_fontsLoaded = false;
    Gui::mapLegacyFontNames();
}

void Application::loadRemainingFonts()
{
    finishLoadingFirstFonts();
    const QStringList paths = std::exchange(m_fontsToLoad, QStringList());
    for (const QString& path : paths)
        addFont(path);
    Gui::mapLegacyFontNames();
    if (m_fontsLoaded)
        Logger::debug(QString(), QStringLiteral("Fonts loaded."));
    else
        Logger::error(QString(), QStringLiteral("Could not load fonts."));
}

void Application::addFont(const QString& path)
{
    // One face that fails leaves the others to be tried.
    if (QFontDatabase::addApplicationFont(path) < 0)
        m_fontsLoaded = false;
}

void Application::loadTranslation(const QString& language)
{
    const QString path = QStringLiteral("%1/%2/%3_%4.qm")
                             .arg(applicationDirPath(), QStringLiteral("translations"), QStringLiteral("KESTRAVIN"), language);
    Logger::debug(QString(), QStringLiteral("Loading translation: %1").arg(path));
    const QLocale locale(language);
    QLocale::setDefault(locale);
    if (language == m_language || !QFile::exists(path)) {
        Logger::error(QString(), QString::fromLatin1(UnableToLoadTranslation).arg(path));
        return;
    }
    Logger::debug(QString(), QStringLiteral("Change language %1 -> %2")
                                 .arg(QLocale::languageToString(QLocale(m_language).language()),
                                     QLocale::languageToString(locale.language())));
    removeTranslator(m_translator);
    // A damaged file leaves the program in English, as a missing one does, and says so.
    if (m_translator->load(path))
        installTranslator(m_translator);
    else
        Logger::error(QString(), QString::fromLatin1(UnableToLoadTranslation).arg(path));
    m_language = language;
}

void Application::showSystemTrayInformationMessage(QString message, QVariant data)
{
    m_notifications->enqueue(TrayNotifications::Information, message, data);
}

void Application::showSystemTrayInformationMessage(QString message)
{
    showSystemTrayInformationMessage(message, QVariant());
}

void Application::showSystemTrayWarningMessage(QString message, QVariant data)
{
    m_notifications->enqueue(TrayNotifications::Warning, message, data);
}

void Application::showSystemTrayWarningMessage(QString message)
{
    showSystemTrayWarningMessage(message, QVariant());
}

void Application::showSystemTrayCriticalMessage(QString message, QVariant data)
{
    m_notifications->enqueue(TrayNotifications::Critical, message, data);
}

void Application::showSystemTrayCriticalMessage(QString message)
{
    showSystemTrayCriticalMessage(message, QVariant());
}

void Application::quit()
{
    closeAllWindows();
    if (m_trayIcon)
        m_trayIcon->hide();
    QCoreApplication::quit();
}

void Application::onSettingsChanged(QString group, QString key, QVariant value)
{
    // Emitted under the settings lock: only the arguments may be used here.
    if (group == QLatin1String(ApplicationGroup) && key == QLatin1String(StartOnSystemStartupKey))
        setRunOnStartup(value.toBool());
}

void Application::setRunOnStartup(bool runOnStartup)
{
    m_autostart->setEnabled(runOnStartup);
}

void Application::trayIconActivated(QSystemTrayIcon::ActivationReason reason)
{
    if (reason == QSystemTrayIcon::DoubleClick)
        emit showMainWindow();
}

void Application::onTrayMessageClicked()
{
    const QVariant data = m_notifications->currentData();
    if (data.isNull() || data.userType() != QMetaType::Int)
        return;
    emit setCurrentDrive(data.toInt());
    emit showDriveStatusPage();
}

} // namespace Velmora::Application
