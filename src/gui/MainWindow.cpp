#include "gui/MainWindow.h"

#include "ads/AdsManager.h"
#include "gui/GuiResources.h"
#include "gui/MenuBar.h"
#include "gui/pages/FirmwareUpdatePage.h"
#include "gui/pages/HomePage.h"
#include "gui/pages/PerformanceCheckPage.h"
#include "gui/pages/SSDStatusPage.h"
#include "gui/pages/SettingsPage.h"
#include "gui/pages/SmartParametersPage.h"
#include "gui/pages/SupportFormPage.h"
#include "gui/TitleBar.h"
#include "gui/views/AboutWidget.h"
#include "gui/views/AdWidget.h"
#include "migration/Migration.h"
#include "migration/MigrationController.h"
#include "migration/wizard/MigrationWizard.h"
#include "settings/GeneralSettings.h"
#include "settings/SmartSettings.h"
#include "settings/UpdateSettings.h"
#include "system/Drive.h"
#include "system/System.h"
#include "update/ApplicationUpdate.h"

#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace Velmora::Gui {

namespace {

// A window button is as big as it is, whatever its font: the title area is laid out without a font
// engine for the glyphs, whose font is loaded when they are first painted.
class WindowButton : public QPushButton
{
public:
    WindowButton(const QString& glyph, QWidget* parent)
        : QPushButton(glyph, parent)
    {
        setFixedSize(Size);
    }
    QSize sizeHint() const override { return Size; }
    QSize minimumSizeHint() const override { return Size; }

private:
    static constexpr QSize Size{32, 32};
};

QPushButton* windowButton(const QString& objectName, const QString& glyph, QWidget* parent)
{
    auto* button = new WindowButton(glyph, parent);
    button->setObjectName(objectName);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

} // namespace

MainWindow::MainWindow(const Collaborators& collaborators, QWidget* parent)
    : QWidget(parent)
    , collaborators(collaborators)
    , system(collaborators.system)
{
    Q_ASSERT(system);
    setObjectName(QStringLiteral("MainWindow"));
    setAttribute(Qt::WA_StyledBackground);
    initGuiResources();
    // Set before any widget exists, so that each is styled once, by the final rules. Moving the window
    // into another parent later restyles all of it.
    QFile stylesheet(QStringLiteral(":/style/MainWindowStylesheet"));
    if (stylesheet.open(QIODevice::ReadOnly))
        setStyleSheet(QString::fromUtf8(stylesheet.readAll()));

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

    auto* homePage = new HomePage(system, contentStackedWidget);
    addPage(Page::HomeId, homePage);
    connect(homePage, &HomePage::changeCurrentDrive, this, &MainWindow::onHomeDriveSelected);

    connect(menu, &MenuBar::menuTriggered, this, &MainWindow::changePage);
    menu->hide();
    footer->hide();
    homeFooter->show();
    updateAvailableButton->hide();

    connect(updateAvailableButton, &QPushButton::clicked, this, &MainWindow::showSettingsPage);
    connect(updateAvailableButton, &QPushButton::clicked, menu, &MenuBar::onSwitchToSettingsTab);
    connectCollaborators();

    connect(minimizeWindow, &QPushButton::clicked, this, &MainWindow::minimizeWindowRequest);
    connect(maximizeWindow, &QPushButton::clicked, this, &MainWindow::maximizeWindowRequest);
    connect(resoreWindow, &QPushButton::clicked, this, &MainWindow::restoreWindowRequest);
    connect(closeWindow, &QPushButton::clicked, this, &MainWindow::closeWindowRequest);
    setMaximizeButtonVisible(true);
}

void MainWindow::connectCollaborators()
{
    if (collaborators.applicationUpdate) {
        connect(collaborators.applicationUpdate, &Update::ApplicationUpdate::applicationUpdateStatusChanged, this,
            &MainWindow::onApplicationUpdateStatusChanged);
    }
    if (collaborators.adsManager)
        connect(collaborators.adsManager, &Ads::AdsManager::newAdAvailable, this, &MainWindow::onAdDisplayRequest);
    if (Migration::MigrationController* controller = collaborators.migrationController) {
        connect(controller->migration(), &Migration::Migration::start, this, &MainWindow::onMigrationStarted);
        connect(controller, &Migration::MigrationController::migrationFinished, this, &MainWindow::onMigrationStopped);
        connect(controller, &Migration::MigrationController::migrationFailed, this, &MainWindow::onMigrationStopped);
    }
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
    updateAvailableButton = new QPushButton(tr("UPDATE AVAILABLE"), footer);
    updateAvailableButton->setObjectName(QStringLiteral("updateAvailableButton"));
    layout->addWidget(currentDrive);
    layout->addStretch(1);
    layout->addWidget(label_updateAvailable);
    layout->addWidget(updateAvailableButton);
    footersLayout->addWidget(footer);
}

QWidget* MainWindow::createPage(Page::PageId id)
{
    switch (id) {
    case Page::SsdStatusId:
        return createStatusPage();
    case Page::SmartParametersId:
        return new SmartParametersPage(system);
    case Page::PerformanceTestId:
        return collaborators.performanceCheck ? new PerformanceCheckPage(collaborators.performanceCheck) : nullptr;
    case Page::FirmwareUpdateId:
        return collaborators.firmwareUpdate ? new FirmwareUpdatePage(collaborators.firmwareUpdate, system) : nullptr;
    case Page::TechnicalSupportId:
        return collaborators.supportManager && collaborators.supportCaptcha
            ? new SupportFormPage(collaborators.supportManager, collaborators.supportCaptcha, system)
            : nullptr;
    case Page::SettingsId:
        return createSettingsPage();
    case Page::DataMigrationId:
        // The wizard drives the model that the controller runs; without a controller, no wizard.
        if (Migration::MigrationController* controller = collaborators.migrationController)
            return new Migration::MigrationWizard(controller->migration());
        return nullptr;
    case Page::HomeId:
    case Page::SsdManagementId:
    case Page::AdditionalFeaturesId:
        break;
    }
    return nullptr;
}

Page* MainWindow::createStatusPage()
{
    auto* page = new SSDStatusPage(system, contentStackedWidget);
    connect(page, &SSDStatusPage::changePageRequest, this, &MainWindow::changePage);
    connect(page, &SSDStatusPage::changePageRequest, menu, &MenuBar::onSwitchToFirmwareUpdatetPage);
    return page;
}

Page* MainWindow::createSettingsPage()
{
    auto* page = new SettingsPage;
    page->addCategory(new Settings::GeneralSettings(page));
    page->addCategory(new Settings::SmartSettings(page));
    if (collaborators.applicationUpdate)
        page->addCategory(new Settings::UpdateSettings(this, collaborators.applicationUpdate, page));
    return page;
}

void MainWindow::addPage(Page::PageId id, QWidget* page)
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
        if (QWidget* page = createPage(screenId))
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
    if (adWidget && adWidget->isVisible())
        onAdCloseRequest();
    if (aboutWidget)
        onAboutAppCloseRequest();
    showDriveSection();
}

void MainWindow::showSettingsPage()
{
    // The footer stays visible under the about view and an advertisement: leave them for the page.
    if (adWidget && adWidget->isVisible())
        onAdCloseRequest();
    if (aboutWidget)
        onAboutAppCloseRequest();
    changePage(Page::SettingsId);
}

void MainWindow::onApplicationUpdateStatusChanged(Update::ApplicationUpdateStatus updatedStatus,
    QString newestAppVersion)
{
    const bool available = updatedStatus == Update::UpdateAvailable;
    label_updateAvailable->setVisible(!available);
    updateAvailableButton->setVisible(available);
    if (available)
        emit applicationUpdateAvailable(tr("APPLICATION UPDATE AVAILABLE"), newestAppVersion);
}

void MainWindow::showContentInsteadOf(QWidget* view)
{
    view->hide();
    contentScrollArea->show();
    if (contentStackedWidget->currentIndex() != pages.value(Page::HomeId))
        menu->show();
}

void MainWindow::onAdDisplayRequest(QString filepath, QUrl url)
{
    if (!adWidget) {
        adWidget = new AdWidget(body);
        connect(adWidget, &AdWidget::closeRequest, this, &MainWindow::onAdCloseRequest);
        body->layout()->addWidget(adWidget);
    }
    if (aboutWidget)
        onAboutAppCloseRequest();
    menu->hide();
    contentScrollArea->hide();
    adWidget->resize(size());
    // Shown before it loads: a file it cannot show makes it ask to close at once, and that must stand.
    adWidget->show();
    adWidget->showAd(filepath, url);
}

void MainWindow::onAdCloseRequest()
{
    showContentInsteadOf(adWidget);
}

void MainWindow::onAboutAppDisplayRequest()
{
    if (!aboutWidget) {
        aboutWidget = new AboutWidget(body);
        connect(aboutWidget, &AboutWidget::closeRequest, this, &MainWindow::onAboutAppCloseRequest);
    }
    if (adWidget && adWidget->isVisible())
        onAdCloseRequest();
    static_cast<QBoxLayout*>(body->layout())->addWidget(aboutWidget, 0, Qt::AlignCenter);
    menu->hide();
    contentScrollArea->hide();
    aboutWidget->show();
}

void MainWindow::onAboutAppCloseRequest()
{
    body->layout()->removeWidget(aboutWidget);
    showContentInsteadOf(aboutWidget);
    // Built anew on the next request, so that its licence files are copied again.
    aboutWidget->deleteLater();
    aboutWidget = nullptr;
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
    // Until a drive is chosen on the home page, the box only shows what is there.
    if (system->currentDrive())
        system->setCurrentDrive(currentDrive->itemData(index).toInt());
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
