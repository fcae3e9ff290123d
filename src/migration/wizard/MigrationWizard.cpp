#include "migration/wizard/MigrationWizard.h"

#include "logger/Logger.h"
#include "migration/Migration.h"
#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "migration/wizard/AlertPage.h"
#include "migration/wizard/ErrorPage.h"
#include "migration/wizard/FiltersPage.h"
#include "migration/wizard/FinishPage.h"
#include "migration/wizard/InitPage.h"
#include "migration/wizard/PartitionSizePage.h"
#include "migration/wizard/ProgressPage.h"
#include "migration/wizard/WizardStyle.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

// The animation of the progress page lives in a resource file of the static library, which
// stays out of the program unless it is named once. Q_INIT_RESOURCE may not stand in a namespace.
static void initWizardResources()
{
    Q_INIT_RESOURCE(wizard);
}

namespace Velmora::Migration {

using System::MigrationDestDrive;
using System::MigrationDestPartition;

namespace {

// Which buttons each page shows; pages missing here show the next button alone.
const QMap<int, QList<int>>& buttonTable()
{
    static const QMap<int, QList<int>> table = {
        {PageBase::InitPageId, {MigrationWizard::NextButton}},
        {PageBase::AlertPageId, {MigrationWizard::StartButton, MigrationWizard::BackButton}},
        {PageBase::FiltersPageId, {MigrationWizard::ApplyButton}},
        {PageBase::PartitionSizePageId, {MigrationWizard::NextButton, MigrationWizard::BackButton}},
        {PageBase::ProgressPageId, {MigrationWizard::CancelButton}},
        {PageBase::FinishPageId, {MigrationWizard::HomeButton}},
        {PageBase::ErrorPageId, {MigrationWizard::HomeButton}},
        {8, {MigrationWizard::HomeButton}},
    };
    return table;
}

} // namespace

MigrationWizard::MigrationWizard(Migration* migration, QWidget* parent)
    : QWidget(parent)
    , migration(migration)
{
    initWizardResources();
    buildForm();
    nextButtonUpdate.setSingleShot(true);
    nextButtonUpdate.setInterval(0);
    connect(&nextButtonUpdate, &QTimer::timeout, this, &MigrationWizard::updateNextButton);
    connect(ui.backButton, &QPushButton::clicked, this, &MigrationWizard::prevPage);
    connect(ui.nextButton, &QPushButton::clicked, this, &MigrationWizard::nextPage);
    connect(ui.startButton, &QPushButton::clicked, this, &MigrationWizard::startMigration);
    connect(ui.cancelButton, &QPushButton::clicked, this, &MigrationWizard::cancelMigration);
    connect(ui.homeButton, &QPushButton::clicked, this, &MigrationWizard::home);
    connect(ui.applyButton, &QPushButton::clicked, this, &MigrationWizard::onFiltersApplied);

    connect(migration, &Migration::sourceDriveChanged, this, &MigrationWizard::onSourceDriveChanged);
    connect(migration, &Migration::destinationDriveChanged, this, &MigrationWizard::onDestinationDriveChanged);
    connect(migration, &Migration::migrationFailed, this, &MigrationWizard::onMigrationFailed);
    connect(migration, &Migration::migrationFinished, this, &MigrationWizard::onMigrationFinished);
    connect(migration, &Migration::start, this, &MigrationWizard::onMigrationStarted);
    connect(migration, &Migration::detectedFaultedFilesOrDirectories, this,
        &MigrationWizard::onDetectedFaultedFilesOrDirectories);
    createPages();
    setPage(PageBase::InitPageId);
}

void MigrationWizard::buildForm()
{
    setObjectName(QStringLiteral("MigrationWizard"));
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(WizardStyle::stylesheet());
    ui.titleLabel = new QLabel(this);
    ui.titleLabel->setObjectName(QStringLiteral("titleLabel"));
    ui.stackedWidget = new QStackedWidget(this);
    ui.stackedWidget->setObjectName(QStringLiteral("stackedWidget"));

    const auto makeButton = [this](int id, const QString& objectName, const QString& caption) {
        auto* button = new QPushButton(caption, this);
        button->setObjectName(objectName);
        button->setCursor(Qt::PointingHandCursor);
        button->setMinimumWidth(120);
        buttons.insert(id, button);
        return button;
    };
    ui.cancelButton = makeButton(CancelButton, QStringLiteral("cancelButton"), tr("CANCEL"));
    ui.backButton = makeButton(BackButton, QStringLiteral("backButton"), tr("BACK"));
    ui.nextButton = makeButton(NextButton, QStringLiteral("nextButton"), tr("NEXT"));
    ui.startButton = makeButton(StartButton, QStringLiteral("startButton"), tr("START"));
    ui.applyButton = makeButton(ApplyButton, QStringLiteral("applyButton"), tr("APPLY"));
    ui.homeButton = makeButton(HomeButton, QStringLiteral("homeButton"), tr("HOME"));
    for (QPushButton* primary : {ui.nextButton, ui.startButton, ui.applyButton, ui.homeButton})
        WizardStyle::markPrimary(primary);

    auto* buttonRow = new QHBoxLayout;
    buttonRow->setSpacing(12);
    buttonRow->addWidget(ui.backButton);
    buttonRow->addStretch(1);
    for (QPushButton* button : {ui.cancelButton, ui.applyButton, ui.startButton, ui.nextButton, ui.homeButton})
        buttonRow->addWidget(button);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 20, 32, 20);
    layout->setSpacing(14);
    layout->addWidget(ui.titleLabel);
    layout->addWidget(ui.stackedWidget, 1);
    layout->addLayout(buttonRow);
}

QString MigrationWizard::title() const
{
    return ui.titleLabel->text();
}

void MigrationWizard::addPage(int id, PageBase* page)
{
    pages.insert(id, page);
    ui.stackedWidget->addWidget(page);
}

void MigrationWizard::createPages()
{
    addPage(PageBase::InitPageId, new InitPage(migration, this));
    auto* sizePage = new PartitionSizePage(this);
    connect(sizePage, &PartitionSizePage::requestFiltersPage, this, &MigrationWizard::onRequestFiltersPage);
    addPage(PageBase::PartitionSizePageId, sizePage);
    addPage(PageBase::AlertPageId, new AlertPage(this));
    addPage(PageBase::ProgressPageId, new ProgressPage(migration, this));
    addPage(PageBase::FinishPageId, new FinishPage(this));
    addPage(PageBase::ErrorPageId, new ErrorPage(this));
    handDrivesToPartitionPage();
}

FiltersPage* MigrationWizard::filtersPage()
{
    if (auto* existing = static_cast<FiltersPage*>(pages.value(PageBase::FiltersPageId)))
        return existing;
    auto* created = new FiltersPage(this);
    connect(created, &FiltersPage::filtersCalculationsStarted, this, &MigrationWizard::onFiltersCalculationsStarted);
    connect(created, &FiltersPage::filtersCalculationsFinished, this, &MigrationWizard::onFiltersCalculationsFinished);
    connect(created, &FiltersPage::partitionDataChanged, this, &MigrationWizard::onPartisionSizeCalculationDataChanged);
    addPage(PageBase::FiltersPageId, created);
    return created;
}

PartitionSizePage* MigrationWizard::partitionSizePage() const
{
    return static_cast<PartitionSizePage*>(pages.value(PageBase::PartitionSizePageId));
}

void MigrationWizard::setPage(PageBase::PageId id)
{
    PageBase* page = pages.value(id);
    if (!page || id == currentPageId) {
        updateButtons(0);
        return;
    }
    if (pageHistory.isEmpty() || pageHistory.last() != id)
        pageHistory.append(id);
    currentPageId = id;
    ui.titleLabel->setText(page->title().toUpper());
    ui.stackedWidget->setCurrentWidget(page);
    updateButtons(id);

    if (id != PageBase::PartitionSizePageId)
        return;
    const MigrationDestDrive* destination = migration->destinationDrive();
    if (destination && destination->allPartitionsInitialized())
        startPartitionsSizeCalculation();
    else
        Logger::debug(QString(), QStringLiteral("Waiting for destination drive initialization"));
}

void MigrationWizard::updateButtons(int pageId)
{
    for (QPushButton* button : qAsConst(buttons))
        button->hide();
    const QList<int> shown = buttonTable().value(pageId, {NextButton});
    for (int id : shown)
        buttons.value(id)->show();
    if (pageId == PageBase::FiltersPageId)
        ui.applyButton->setEnabled(true);
    updateNextButton();
}

void MigrationWizard::updateNextButton()
{
    nextButtonUpdate.stop();
    const System::Drive* source = migration->sourceDrive();
    const MigrationDestDrive* destination = migration->destinationDrive();
    bool allowed = true;
    switch (currentPageId) {
    case PageBase::InitPageId:
        allowed = source && destination && source->id() != destination->id();
        break;
    case PageBase::PartitionSizePageId:
        // A partition being measured doesn't fit yet, so the button waits for the estimation.
        allowed = destination && destination->allPartitionsFit();
        break;
    case PageBase::ProgressPageId:
        allowed = false;
        break;
    default:
        break;
    }
    if (PageBase* page = pages.value(currentPageId))
        page->setComplete(allowed);
    ui.nextButton->setEnabled(allowed);
}

void MigrationWizard::nextPage()
{
    const PageBase* page = pages.value(currentPageId);
    if (!page)
        return;
    if (page->nextPageId == PageBase::PartitionSizePageId)
        calculationPending = true;
    setPage(static_cast<PageBase::PageId>(page->nextPageId));
}

void MigrationWizard::prevPage()
{
    if (currentPageId == PageBase::PartitionSizePageId && calculating) {
        stopEstimation();
        migration->stopFilteredSizeRequests();
    }
    if (pageHistory.size() > 1)
        pageHistory.removeLast();
    setPage(static_cast<PageBase::PageId>(pageHistory.last()));
}

void MigrationWizard::stopEstimation()
{
    if (!calculating)
        return;
    calculating = false;
    partitionsToCalculate.clear();
    if (auto* filters = static_cast<FiltersPage*>(pages.value(PageBase::FiltersPageId))) {
        if (MigrationDestPartition* partition = filters->partition())
            partition->setFiltersChanged(false);
        disconnect(filters, &FiltersPage::filtersCalculationsFinished, this,
            &MigrationWizard::onPartitionSizeCalculationFinished);
    }
}

int MigrationWizard::estimationPercent(int done, int total, int progress)
{
    if (total <= 0)
        return 0;
    return qMax(0, done * 100 / total + progress / total);
}

void MigrationWizard::startPartitionsSizeCalculation()
{
    PartitionSizePage* page = partitionSizePage();
    if (currentPageId != PageBase::PartitionSizePageId || !page)
        return;
    page->setEstimationProgress(0);
    MigrationDestDrive* destination = migration->destinationDrive();
    if (!calculationPending || !destination)
        return;
    Logger::debug(QString(), QStringLiteral("Destination drive initialized, starting partitions size calculation"));
    calculationPending = false;
    calculating = true;
    page->rebuildRows();
    page->startEstimation();

    partitionsToCalculate = destination->partitions().keys();
    calculationsTotal = 0;
    calculationsDone = -1;
    for (int id : qAsConst(partitionsToCalculate)) {
        MigrationDestPartition* partition = destination->migrationPartition(id);
        if (!partition)
            continue;
        partition->setCalculationProgress(0);
        if (!partition->isSystemRequired() && !partition->letter().isEmpty())
            ++calculationsTotal;
    }
    calculateNextPartition();
}

void MigrationWizard::calculateNextPartition()
{
    const MigrationDestDrive* destination = migration->destinationDrive();
    while (destination && !partitionsToCalculate.isEmpty()) {
        MigrationDestPartition* partition = destination->migrationPartition(partitionsToCalculate.takeFirst());
        if (!partition)
            continue;
        FiltersPage* filters = filtersPage();
        filters->setPartition(partition);
        if (partition->isSystemRequired() || partition->letter().isEmpty())
            continue;
        ++calculationsDone;
        connect(filters, &FiltersPage::filtersCalculationsFinished, this,
            &MigrationWizard::onPartitionSizeCalculationFinished, Qt::UniqueConnection);
        partition->calculateFilteredFilesSize();
        onPartisionSizeCalculationDataChanged();
        updateNextButton();
        return;
    }
    partitionsToCalculate.clear();
    if (currentPageId == PageBase::PartitionSizePageId)
        partitionSizePage()->finishEstimation();
    calculating = false;
    updateNextButton();
}

void MigrationWizard::onPartitionSizeCalculationFinished()
{
    if (!calculating)
        return;
    FiltersPage* filters = filtersPage();
    if (MigrationDestPartition* partition = filters->partition())
        partition->setFiltersChanged(false);
    disconnect(filters, &FiltersPage::filtersCalculationsFinished, this, &MigrationWizard::onPartitionSizeCalculationFinished);
    calculateNextPartition();
}

void MigrationWizard::onPartisionSizeCalculationDataChanged()
{
    if (currentPageId != PageBase::PartitionSizePageId)
        return;
    const auto* filters = static_cast<FiltersPage*>(pages.value(PageBase::FiltersPageId));
    const MigrationDestPartition* partition = filters ? filters->partition() : nullptr;
    const int progress = partition ? partition->calculationProgress() : 0;
    partitionSizePage()->setEstimationProgress(estimationPercent(calculationsDone, calculationsTotal, progress));
}

void MigrationWizard::onRequestFiltersPage(int partitionId)
{
    const MigrationDestDrive* destination = migration->destinationDrive();
    MigrationDestPartition* partition = destination ? destination->migrationPartition(partitionId) : nullptr;
    if (!partition) {
        Logger::warning(QString(), QStringLiteral("Filters asked for a partition the plan does not hold: %1").arg(partitionId));
        return;
    }
    filtersPage()->setPartition(partition);
    setPage(PageBase::FiltersPageId);
}

void MigrationWizard::onFiltersApplied()
{
    const auto* filters = static_cast<FiltersPage*>(pages.value(PageBase::FiltersPageId));
    MigrationDestPartition* partition = filters ? filters->partition() : nullptr;
    if (partition && partition->filtersChanged() && !partition->letter().isEmpty()) {
        partition->calculateFilteredFilesSize();
        partition->setFiltersChanged(false);
    }
    prevPage();
    if (currentPageId == PageBase::PartitionSizePageId)
        partitionSizePage()->refresh();
}

void MigrationWizard::onFiltersCalculationsStarted()
{
    ui.applyButton->setEnabled(false);
}

void MigrationWizard::onFiltersCalculationsFinished()
{
    ui.applyButton->setEnabled(true);
    updateNextButton();
}

void MigrationWizard::startMigration()
{
    migration->startMigration();
}

void MigrationWizard::cancelMigration()
{
    migration->cancelMigration();
    // No page has this id: the page stays, the cancel button goes, and the error page follows.
    setPage(static_cast<PageBase::PageId>(8));
}

void MigrationWizard::home()
{
    migration->resetToDefaults();
    stopEstimation();
    calculationPending = false;
    const QList<PageBase*> former = pages.values();
    pages.clear();
    // The home button belongs to the wizard, not to a page, so the pages can go at once and
    // take their connections to the model with them.
    qDeleteAll(former);
    faultedFiles.clear();
    faultedDirectories.clear();
    currentPageId = 0;
    createPages();
    setPage(PageBase::InitPageId);
    pageHistory = {PageBase::InitPageId};
}

void MigrationWizard::onMigrationStarted()
{
    setPage(PageBase::ProgressPageId);
    faultedFiles.clear();
    faultedDirectories.clear();
}

void MigrationWizard::onDetectedFaultedFilesOrDirectories(QStringList files, QStringList directories)
{
    faultedFiles.append(files);
    faultedDirectories.append(directories);
}

void MigrationWizard::onMigrationFinished()
{
    setPage(PageBase::FinishPageId);
    if (!faultedFiles.isEmpty() || !faultedDirectories.isEmpty())
        static_cast<FinishPage*>(pages.value(PageBase::FinishPageId))->setFaultedFilesAndDirectories(faultedFiles, faultedDirectories);
}

void MigrationWizard::onMigrationFailed(QString errorMsg)
{
    // A cancelled run may fail twice (the cancel, then the step it waited for). Showing the error
    // page again would call for the present page, which leaves the default row without HOME.
    if (currentPageId == PageBase::ErrorPageId) {
        Logger::warning(QString(), QStringLiteral("Migration failed again after its error was shown: %1").arg(errorMsg));
        return;
    }
    static_cast<ErrorPage*>(pages.value(PageBase::ErrorPageId))->setErrorMessage(errorMsg);
    setPage(PageBase::ErrorPageId);
}

void MigrationWizard::handDrivesToPartitionPage()
{
    if (PartitionSizePage* page = partitionSizePage())
        page->setDrives(migration->sourceDrive(), migration->destinationDrive());
}

void MigrationWizard::onSourceDriveChanged()
{
    updateNextButton();
    handDrivesToPartitionPage();
    checkDrivesPresent();
}

void MigrationWizard::onDestinationDriveChanged()
{
    for (const QMetaObject::Connection& connection : qAsConst(destinationConnections))
        disconnect(connection);
    destinationConnections.clear();
    if (MigrationDestDrive* destination = migration->destinationDrive()) {
        destinationConnections << connect(destination, &System::Drive::dataChanged, this,
            &MigrationWizard::onDestinationPartitionDataChange);
        destinationConnections << connect(destination, &MigrationDestDrive::initialized, this,
            &MigrationWizard::onDestinationDriveInitialized);
    }
    updateNextButton();
    handDrivesToPartitionPage();
    checkDrivesPresent();
}

void MigrationWizard::checkDrivesPresent()
{
    if (migration->sourceDrive() && migration->destinationDrive())
        return;
    switch (currentPageId) {
    case PageBase::AlertPageId:
    case PageBase::FiltersPageId:
    case PageBase::PartitionSizePageId:
        Logger::warning(QString(), QStringLiteral("A drive of the migration is gone, back to the choice of drives"));
        stopEstimation();
        setPage(PageBase::InitPageId);
        pageHistory = {PageBase::InitPageId};
        break;
    case PageBase::ProgressPageId:
        Logger::warning(QString(), QStringLiteral("A drive of the migration is gone during the run, cancelling it"));
        emit migration->cancel();
        break;
    default:
        break;
    }
}

void MigrationWizard::onDestinationPartitionDataChange()
{
    nextButtonUpdate.start();
    if (!calculating && currentPageId == PageBase::PartitionSizePageId)
        partitionSizePage()->refresh();
}

void MigrationWizard::onDestinationDriveInitialized()
{
    startPartitionsSizeCalculation();
}

} // namespace Velmora::Migration
