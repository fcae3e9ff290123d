#include "gui/MainWindow.h"

#include "gui/MenuBar.h"
#include "gui/PagePlaceholder.h"
#include "gui/TitleBar.h"
#include "system/Drive.h"
#include "system/System.h"
#include "update/ApplicationUpdate.h"

#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace Velmora::Gui {

namespace {

const char* const Stylesheet = R"(
#MainWindow { background-color: rgb(0, 0, 26); }
#header { background-color: rgb(0, 10, 50); }
#windowTitle { color: rgb(255, 255, 255); font: 18px "Inter UI Black"; }
#body, #contentScrollArea, #contentStackedWidget { background-color: rgb(0, 2, 40); border: none; }
#menu { background-color: rgb(0, 36, 94); }
#homeFooter, #footer { background-color: rgb(0, 0, 26); }
#minimizeWindow, #resoreWindow, #maximizeWindow, #closeWindow {
    color: rgb(255, 255, 255); background: transparent; border: none; font-size: 16px;
}
#minimizeWindow:hover, #resoreWindow:hover, #maximizeWindow:hover { background-color: rgb(0, 34, 89); }
#closeWindow:hover { background-color: rgb(200, 30, 50); }
#currentDrive {
    background-color: rgb(0, 2, 63); color: rgb(255, 255, 255); border: none;
    padding: 0 12px; font: 13px "Inter UI Semi Bold"; min-height: 32px;
}
#currentDrive:hover { background-color: rgb(0, 34, 89); }
#currentDrive QAbstractItemView { background-color: rgb(0, 2, 63); color: rgb(255, 255, 255); }
#label_updateAvailable { color: rgb(127, 149, 190); font: 13px "Inter UI"; }
#updateAvailableButton { color: rgb(255, 255, 255); background: transparent; border: none; font: 13px "Inter UI Semi Bold"; }
#updateAvailableButton:hover { background-color: rgb(0, 34, 89); }
)";

QPushButton* windowButton(const QString& objectName, const QString& glyph, QWidget* parent)
{
    auto* button = new QPushButton(glyph, parent);
    button->setObjectName(objectName);
    button->setFixedSize(32, 32);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

} // namespace

MainWindow::MainWindow(Velmora::System::System* system, QWidget* parent)
    : QWidget(parent)
    , system(system)
{
    setObjectName(QStringLiteral("MainWindow"));
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(QString::fromUtf8(Stylesheet));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildHeader());

    body = new QWidget(this);
    body->setObjectName(QStringLiteral("body"));
    body->setAttribute(Qt::WA_StyledBackground);
    auto* bodyLayout = new QVBoxLayout(body);
    bodyLayout->setContentsMargins(0, 0, 0, 0);
    bodyLayout->setSpacing(0);
    menu = new MenuBar(body);
    bodyLayout->addWidget(menu);
    contentScrollArea = new QScrollArea(body);
    contentScrollArea->setObjectName(QStringLiteral("contentScrollArea"));
    contentScrollArea->setWidgetResizable(true);
    contentScrollArea->setFrameShape(QFrame::NoFrame);
    contentStackedWidget = new QStackedWidget;
    contentStackedWidget->setObjectName(QStringLiteral("contentStackedWidget"));
    contentScrollArea->setWidget(contentStackedWidget);
    bodyLayout->addWidget(contentScrollArea, 1);
    layout->addWidget(body, 1);
    buildFooters(layout);

    const QString version = QString::fromLatin1(Update::ApplicationUpdate::ApplicationVersion) + QLatin1Char('-');
    windowTitle->setText(windowTitle->text() + QLatin1Char(' ') + QString(version).replace(QLatin1Char('-'), QLatin1Char(' ')));

    // Connected before the drives are listed: the first one listed becomes the current drive.
    connect(currentDrive, qOverload<int>(&QComboBox::currentIndexChanged), this,
        &MainWindow::on_currentDrive_currentIndexChanged);
    for (int id : system->driveIds())
        onDriveAdded(id);
    connect(system, &System::System::driveAdded, this, &MainWindow::onDriveAdded);
    connect(system, &System::System::driveRemoved, this, &MainWindow::onDriveRemoved);
    connect(system, &System::System::currentDriveChanged, this, &MainWindow::onCurrentDriveChanged);

    addPage(Page::HomeId, createPage(Page::HomeId));
    addPage(Page::SsdStatusId, createPage(Page::SsdStatusId));

    connect(menu, &MenuBar::menuTriggered, this, &MainWindow::changePage);
    menu->hide();
    footer->hide();
    homeFooter->show();
    updateAvailableButton->hide();

    connect(minimizeWindow, &QPushButton::clicked, this, &MainWindow::minimizeWindowRequest);
    connect(maximizeWindow, &QPushButton::clicked, this, &MainWindow::maximizeWindowRequest);
    connect(resoreWindow, &QPushButton::clicked, this, &MainWindow::restoreWindowRequest);
    connect(closeWindow, &QPushButton::clicked, this, &MainWindow::closeWindowRequest);
    setMaximizeButtonVisible(true);
}

QWidget* MainWindow::buildHeader()
{
    header = new TitleBar(this);
    header->setObjectName(QStringLiteral("header"));
    header->setFixedHeight(64);
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(24, 0, 16, 0);
    layout->setSpacing(4);

    auto* appLogo = new QLabel(header);
    appLogo->setObjectName(QStringLiteral("label_appLogo"));
    windowTitle = new QLabel(tr("KESTRAVIN SSD"), header);
    windowTitle->setObjectName(QStringLiteral("windowTitle"));
    layout->addWidget(appLogo);
    layout->addWidget(windowTitle);
    layout->addStretch(1);

    // Unicode symbols for the window buttons: every font of the program has them or a fallback does.
    minimizeWindow = windowButton(QStringLiteral("minimizeWindow"), QStringLiteral("\u2013"), header);
    resoreWindow = windowButton(QStringLiteral("resoreWindow"), QStringLiteral("\u2750"), header);
    maximizeWindow = windowButton(QStringLiteral("maximizeWindow"), QStringLiteral("\u25a1"), header);
    closeWindow = windowButton(QStringLiteral("closeWindow"), QStringLiteral("\u2715"), header);
    for (QPushButton* button : { minimizeWindow, resoreWindow, maximizeWindow, closeWindow })
        layout->addWidget(button);
    return header;
}

void MainWindow::buildFooters(QVBoxLayout* footersLayout)
{
    homeFooter = new QWidget(this);
    homeFooter->setObjectName(QStringLiteral("homeFooter"));
    homeFooter->setAttribute(Qt::WA_StyledBackground);
    homeFooter->setFixedHeight(56);
    footersLayout->addWidget(homeFooter);

    footer = new QWidget(this);
    footer->setObjectName(QStringLiteral("footer"));
    footer->setAttribute(Qt::WA_StyledBackground);
    footer->setFixedHeight(56);
    auto* layout = new QHBoxLayout(footer);
    layout->setContentsMargins(24, 0, 24, 0);
    currentDrive = new QComboBox(footer);
    currentDrive->setObjectName(QStringLiteral("currentDrive"));
    currentDrive->setMinimumWidth(320);
    label_updateAvailable = new QLabel(footer);
    label_updateAvailable->setObjectName(QStringLiteral("label_updateAvailable"));
    updateAvailableButton = new QPushButton(footer);
    updateAvailableButton->setObjectName(QStringLiteral("updateAvailableButton"));
    layout->addWidget(currentDrive);
    layout->addStretch(1);
    layout->addWidget(label_updateAvailable);
    layout->addWidget(updateAvailableButton);
    footersLayout->addWidget(footer);
}

Page* MainWindow::createPage(Page::PageId id)
{
    switch (id) {
    case Page::HomeId:
        return new PagePlaceholder(id, tr("HOME"));
    case Page::SsdStatusId:
    case Page::SmartParametersId:
    case Page::PerformanceTestId:
    case Page::FirmwareUpdateId:
    case Page::DataMigrationId:
    case Page::SettingsId:
    case Page::TechnicalSupportId:
        return new PagePlaceholder(id, menu->caption(id));
    case Page::SsdManagementId:
    case Page::AdditionalFeaturesId:
        break;
    }
    return nullptr;
}

void MainWindow::addPage(Page::PageId id, Page* page)
{
    pages.insert(id, contentStackedWidget->addWidget(page));
}

int MainWindow::headerHeight() const
{
    return header->height();
}

void MainWindow::setMaximizeButtonVisible(bool visible)
{
    resoreWindow->setVisible(!visible);
    maximizeWindow->setVisible(visible);
}

bool MainWindow::isCaptionUnderCursor() const
{
    return isCaptionWidget(QApplication::widgetAt(QCursor::pos()));
}

bool MainWindow::isCaptionWidget(const QWidget* widget) const
{
    if (!widget)
        return false;
    for (const QWidget* button : { minimizeWindow, resoreWindow, maximizeWindow, closeWindow }) {
        if (widget == button)
            return false;
    }
    return true;
}

void MainWindow::changePage(Page::PageId screenId)
{
    if (!pages.contains(screenId)) {
        if (Page* page = createPage(screenId))
            addPage(screenId, page);
    }
    // The group ids have no page: operator[] enters them as index 0, the home page.
    contentStackedWidget->setCurrentIndex(pages[screenId]);

    // Only the current page may claim room, so that the scroll area takes its size alone.
    for (int i = 0; i < contentStackedWidget->count(); ++i) {
        QWidget* page = contentStackedWidget->widget(i);
        if (page == contentStackedWidget->currentWidget())
            page->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        else
            page->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    }
}

void MainWindow::showDriveSection()
{
    footer->show();
    homeFooter->hide();
    menu->show();
    changePage(Page::SsdStatusId);
}

void MainWindow::onHomeDriveSelected(int driveId)
{
    showDriveSection();
    system->setCurrentDrive(driveId);
}

void MainWindow::showDriveStatusPage()
{
    if (migrationRunning)
        return;
    showDriveSection();
}

void MainWindow::changeCurrentDrive(int driveId)
{
    system->setCurrentDrive(driveId);
}

void MainWindow::onDriveAdded(int driveId)
{
    const System::Drive* drive = system->drive(driveId);
    if (!drive || drive->isUsb())
        return;
    // The first entry of an empty box becomes current, and through the index change the first
    // listed drive becomes the system's current drive.
    currentDrive->addItem(drive->displayText(true), driveId);
}

void MainWindow::onDriveRemoved(int driveId)
{
    const int index = currentDrive->findData(driveId);
    if (index < 0)
        return;
    const QSignalBlocker blocker(currentDrive);
    currentDrive->removeItem(index);
    // The system moves on to another drive without announcing it; show the one it chose.
    const int current = currentDrive->findData(system->currentDriveId());
    if (current >= 0)
        currentDrive->setCurrentIndex(current);
}

void MainWindow::onCurrentDriveChanged(int driveId)
{
    const int index = currentDrive->findData(driveId);
    if (index < 0)
        return;
    const QSignalBlocker blocker(currentDrive);
    currentDrive->setCurrentIndex(index);
}

void MainWindow::on_currentDrive_currentIndexChanged(int index)
{
    bool ok = false;
    const int driveId = currentDrive->itemData(index).toInt(&ok);
    if (ok && system->drive(driveId))
        system->setCurrentDrive(driveId);
}

void MainWindow::onMigrationStarted()
{
    updateAvailableButton->setEnabled(false);
    menu->setEnabled(false);
    currentDrive->setEnabled(false);
    migrationRunning = true;
}

void MainWindow::onMigrationStopped()
{
    updateAvailableButton->setEnabled(true);
    menu->setEnabled(true);
    currentDrive->setEnabled(true);
    migrationRunning = false;
}

} // namespace Velmora::Gui
