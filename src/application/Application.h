#pragma once

#include "application/TrayNotifications.h"
#include "platform/Autostart.h"

#include <QApplication>
#include <QSystemTrayIcon>
#include <QVariant>

#include <future>
#include <memory>

class QMenu;
class QTranslator;

namespace Velmora::Application {

// The program's application object: keeps it alive in the tray with "Show" and "Quit", queues the
// tray notifications, installs the translation of the chosen language, follows the autostart
// setting and loads the bundled fonts.
class Application : public QApplication
{
    Q_OBJECT

public:
    // `autostart` replaces the platform's own (tests).
    Application(int& argc, char** argv, std::unique_ptr<Platform::Autostart> autostart = nullptr);
    ~Application() override;

    static bool hasMinimizedOption(const QStringList& arguments);

    TrayNotifications* notifications() const { return m_notifications; }
    // Creates the tray icon with its menu and puts it into the tray; once is enough, again does
    // nothing. Notifications due before it are dropped, as a hidden icon drops them.
    void showTrayIcon();
    QString language() const { return m_language; }
    void loadTranslation(const QString& language);

    // The constructor starts loading the font faces the first window shows; this waits for them.
    // To be called before that window is built.
    void finishLoadingFirstFonts();
    // Loads the other faces. To be called once that window has been painted (or at once when the
    // program starts in the tray).
    void loadRemainingFonts();

signals:
    void showMainWindow();
    void setCurrentDrive(int driveId);
    void showDriveStatusPage();

public slots:
    void showSystemTrayInformationMessage(QString message, QVariant data);
    void showSystemTrayInformationMessage(QString message);
    void showSystemTrayWarningMessage(QString message, QVariant data);
    void showSystemTrayWarningMessage(QString message);
    void showSystemTrayCriticalMessage(QString message, QVariant data);
    void showSystemTrayCriticalMessage(QString message);
    void quit();

private slots:
    void onSettingsChanged(QString group, QString key, QVariant value);
    void setRunOnStartup(bool runOnStartup);
    void trayIconActivated(QSystemTrayIcon::ActivationReason reason);
    void onTrayMessageClicked();

private:
    void createTray();
    void startLoadingFonts();
    void addFont(const QString& path);

    QSystemTrayIcon* m_trayIcon = nullptr;
    QMenu* m_trayMenu = nullptr;
    TrayNotifications* m_notifications = nullptr;
    QTranslator* m_translator = nullptr;
    QString m_language;
    std::future<bool> m_firstFonts;
    QStringList m_fontsToLoad;
    bool m_fontsLoaded = true;
    std::unique_ptr<Platform::Autostart> m_autostart;
};

} // namespace Velmora::Application
