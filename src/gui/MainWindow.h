#pragma once

#include "gui/Page.h"
#include "update/ApplicationUpdate.h"

#include <QMap>
#include <QUrl>
#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;
class QScrollArea;
class QStackedWidget;
class QVBoxLayout;

namespace Velmora::Ads {
class AdsManager;
}
namespace Velmora::Migration {
class MigrationController;
}
namespace Velmora::Performance {
class PerformanceCheck;
}
namespace Velmora::Support {
class SupportCaptcha;
class SupportManager;
}
namespace Velmora::System {
class System;
class SystemManager;
}
namespace Velmora::Update {
class FirmwareUpdate;
}

namespace Velmora::Gui {

class AboutWidget;
class AdWidget;
class MenuBar;
class TitleBar;

// The content of the program's window: title area with the window buttons, the menu, the stack
// of pages and the footer with the drive selection. Pages other than the home page are made the
// first time they are asked for, so that the first window is up sooner. Pages are made inside the
// stack: moving a widget with a style sheet of its own under another polishes its whole tree anew.
class MainWindow : public QWidget
{
    Q_OBJECT

public:
    // What the window and its pages work with. Only the system is required; without one of the
    // others the window leaves out the page or the notice it would feed (a test may build a
    // window around drives alone).
    struct Collaborators
    {
        Performance::PerformanceCheck* performanceCheck = nullptr;
        System::SystemManager* systemManager = nullptr;
        System::System* system = nullptr;
        Migration::MigrationController* migrationController = nullptr;
        Update::ApplicationUpdate* applicationUpdate = nullptr;
        Update::FirmwareUpdate* firmwareUpdate = nullptr;
        Support::SupportManager* supportManager = nullptr;
        Support::SupportCaptcha* supportCaptcha = nullptr;
        Ads::AdsManager* adsManager = nullptr;
    };

    explicit MainWindow(const Collaborators& collaborators, QWidget* parent = nullptr);

    int headerHeight() const;
    void setMaximizeButtonVisible(bool visible);
    bool isCaptionUnderCursor() const;
    // Whether a press on this widget of the title area grabs the window rather than a button.
    bool isCaptionWidget(const QWidget* widget) const;

signals:
    void applicationUpdateAvailable(QString message, QVariant data);
    void minimizeWindowRequest();
    void maximizeWindowRequest();
    void restoreWindowRequest();
    void closeWindowRequest();

public slots:
    void changeCurrentDrive(int driveId);
    void showDriveStatusPage();
    void onAboutAppDisplayRequest();

private slots:
    void onHomeDriveSelected(int driveId);
    void changePage(Velmora::Gui::Page::PageId screenId);
    void onDriveAdded(int driveId);
    void onDriveRemoved(int driveId);
    void onCurrentDriveChanged(int driveId);
    void onAdDisplayRequest(QString filepath, QUrl url);
    void on_currentDrive_currentIndexChanged(int index);
    void onApplicationUpdateStatusChanged(Velmora::Update::ApplicationUpdateStatus updatedStatus,
        QString newestAppVersion);
    void showSettingsPage();
    void onAdCloseRequest();
    void onAboutAppCloseRequest();
    void onMigrationStarted();
    void onMigrationStopped();

private:
    QWidget* buildHeader();
    void buildFooters(QVBoxLayout* layout);
    // Mostly a `Page`; the migration wizard is a plain widget of its own subsystem.
    QWidget* createPage(Page::PageId id);
    Page* createStatusPage();
    Page* createSettingsPage();
    void addPage(Page::PageId id, QWidget* page);
    void showDriveSection();
    void connectCollaborators();
    void showContentInsteadOf(QWidget* view);

    Collaborators collaborators;
    System::System* system;
    AdWidget* adWidget = nullptr;
    AboutWidget* aboutWidget = nullptr;
    QMap<int, int> pages;
    bool migrationRunning = false;

    TitleBar* header = nullptr;
    QLabel* windowTitle = nullptr;
    QPushButton* minimizeWindow = nullptr;
    QPushButton* resoreWindow = nullptr;
    QPushButton* maximizeWindow = nullptr;
    QPushButton* closeWindow = nullptr;
    QWidget* body = nullptr;
    MenuBar* menu = nullptr;
    QScrollArea* contentScrollArea = nullptr;
    QStackedWidget* contentStackedWidget = nullptr;
    QWidget* homeFooter = nullptr;
    QWidget* footer = nullptr;
    QComboBox* currentDrive = nullptr;
    QLabel* label_updateAvailable = nullptr;
    QPushButton* updateAvailableButton = nullptr;
};

} // namespace Velmora::Gui
