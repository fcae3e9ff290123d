#pragma once

#include "gui/Page.h"

#include <QMap>
#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;
class QScrollArea;
class QStackedWidget;
class QVBoxLayout;

namespace Velmora::System {
class System;
}

namespace Velmora::Gui {

class MenuBar;
class TitleBar;

// The content of the program's window: title area with the window buttons, the menu, the stack
// of pages and the footer with the drive selection. Pages other than the first two are made the
// first time they are asked for.
class MainWindow : public QWidget
{
    Q_OBJECT

public:
    explicit MainWindow(Velmora::System::System* system, QWidget* parent = nullptr);

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

private slots:
    void onHomeDriveSelected(int driveId);
    void changePage(Velmora::Gui::Page::PageId screenId);
    void onDriveAdded(int driveId);
    void onDriveRemoved(int driveId);
    void onCurrentDriveChanged(int driveId);
    void on_currentDrive_currentIndexChanged(int index);
    void onMigrationStarted();
    void onMigrationStopped();

private:
    QWidget* buildHeader();
    void buildFooters(QVBoxLayout* layout);
    Page* createPage(Page::PageId id);
    void addPage(Page::PageId id, Page* page);
    void showDriveSection();

    Velmora::System::System* system;
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
