#include "migration/wizard/FiltersPage.h"

#include "gui/widgets/ParamValueWidget.h"
#include "migration/ExtensionsFilter.h"
#include "migration/FileExtGroup.h"
#include "migration/FileSystemFilter.h"
#include "migration/MigrationDestPartition.h"
#include "migration/wizard/SizeCalculationProgressBar.h"
#include "system/FileCategories.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeView>
#include <QVBoxLayout>

namespace Velmora::Migration {

using System::MigrationDestPartition;
namespace FileCategory = System::FileCategory;

namespace {
constexpr int SizeColumnWidth = 140;
} // namespace

FiltersPage::FiltersPage(QWidget* parent)
    : PageBase(NoPageId, tr("CHOOSE FILES TO MIGRATE"), parent)
    , tabWidget(new QTabWidget(this))
    , fileFilterView(new QTreeView(this))
    , dataToMigrateParam(new Gui::ParamValueWidget(this))
    , calculateButton(new QPushButton(tr("CALCULATE"), this))
    , sizeCalculation_info(new QLabel(tr("PLEASE WAIT FOR PARTITION SIZE ESTIMATION..."), this))
    , sizeCalculationProgressBar(new SizeCalculationProgressBar(this))
{
    setObjectName(QStringLiteral("FiltersPage"));
    tabWidget->setObjectName(QStringLiteral("tabWidget"));
    tabWidget->addTab(buildFilesTab(), tr("FILES AND FOLDERS"));
    tabWidget->addTab(buildTypesTab(), tr("FILE TYPES"));
    dataToMigrateParam->setObjectName(QStringLiteral("dataToMigrateParam"));
    dataToMigrateParam->setName(tr("DATA TO MIGRATE:"));
    calculateButton->setObjectName(QStringLiteral("calculateButton"));
    calculateButton->setEnabled(false);
    sizeCalculation_info->setObjectName(QStringLiteral("sizeCalculation_info"));
    sizeCalculationProgressBar->setObjectName(QStringLiteral("sizeCalculationProgressBar"));

    auto* sizeRow = new QHBoxLayout;
    sizeRow->addWidget(dataToMigrateParam, 1);
    sizeRow->addWidget(calculateButton);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(tabWidget, 1);
    layout->addLayout(sizeRow);
    layout->addWidget(sizeCalculation_info);
    layout->addWidget(sizeCalculationProgressBar);
    setCalculationShown(false);
}

QWidget* FiltersPage::buildFilesTab()
{
    auto* tab = new QWidget(this);
    auto* info = new QLabel(tr("UNSELECT FILES AND FOLDERS YOU WANT TO SKIP DURING MIGRATION"), tab);
    info->setObjectName(QStringLiteral("label_filesInfo"));
    fileFilterView->setParent(tab);
    fileFilterView->setObjectName(QStringLiteral("fileFilterView"));
    // Rows of one height let the view place a folder of a hundred thousand entries without
    // measuring each of them.
    fileFilterView->setUniformRowHeights(true);
    fileFilterView->setAnimated(false);
    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(info);
    layout->addWidget(fileFilterView, 1);
    return tab;
}

QWidget* FiltersPage::buildTypesTab()
{
    auto* tab = new QWidget(this);
    auto* info = new QLabel(tr("UNSELECT FILE TYPES YOU WANT TO SKIP DURING MIGRATION"), tab);
    info->setObjectName(QStringLiteral("label_typesInfo"));
    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(info);
    const QList<QPair<int, QString>> categories = {{FileCategory::Video, tr("VIDEO")},
        {FileCategory::Sound, tr("SOUND")}, {FileCategory::Documents, tr("DOCUMENTS")},
        {FileCategory::Pictures, tr("PICTURES")}};
    for (const auto& category : categories) {
        auto* box = new QCheckBox(category.second, tab);
        box->setObjectName(QStringLiteral("checkBox_") + System::FileCategories::categoryName(category.first).toLower());
        box->setChecked(true);
        categoryBoxes.insert(category.first, box);
        layout->addWidget(box);
    }
    layout->addStretch(1);
    return tab;
}

void FiltersPage::setPartition(MigrationDestPartition* partition)
{
    for (const QMetaObject::Connection& connection : qAsConst(m_connections))
        disconnect(connection);
    m_connections.clear();
    m_partition = partition;
    m_calculationRunning = partition && partition->isCalculating();

    FileSystemFilter* tree = partition ? partition->fileSystemFilter() : nullptr;
    fileFilterView->setModel(tree);
    strechFirstColumn();
    if (tree) {
        m_connections << connect(fileFilterView, &QTreeView::expanded, tree, &FileSystemFilter::onItemExpanded);
        m_connections << connect(tree, &FileSystemFilter::dataChanged, this, &FiltersPage::onFiltersChanged);
    }
    for (auto it = categoryBoxes.cbegin(); it != categoryBoxes.cend(); ++it)
        bindCategory(it.key(), it.value());
    if (partition) {
        m_connections << connect(calculateButton, &QPushButton::clicked, partition,
            &MigrationDestPartition::calculateFilteredFilesSize);
        m_connections << connect(calculateButton, &QPushButton::clicked, this, &FiltersPage::blockGui);
        m_connections << connect(partition, &MigrationDestPartition::requestFilteredFilesSize, this,
            [this] { m_calculationRunning = true; });
        m_connections << connect(partition, &MigrationDestPartition::dataChanged, this, &FiltersPage::updateCalculatedSize);
        m_connections << connect(partition, &MigrationDestPartition::dataChanged, this, &FiltersPage::partitionDataChanged);
    }
    setCalculationShown(false);
    tabWidget->setEnabled(true);
    calculateButton->setEnabled(partition && !partition->letter().isEmpty());
    updateCalculatedSize();
}

void FiltersPage::bindCategory(int category, QCheckBox* checkBox)
{
    ExtensionsFilter* filter = m_partition ? m_partition->extensionsFilter() : nullptr;
    FileExtGroup* group = filter ? filter->group(category) : nullptr;
    const QSignalBlocker blocker(checkBox);
    checkBox->setEnabled(group != nullptr);
    if (!group) {
        checkBox->setChecked(true);
        return;
    }
    checkBox->setChecked(group->isChecked());
    m_connections << connect(checkBox, &QCheckBox::toggled, group, &FileExtGroup::setChecked);
    m_connections << connect(group, &FileExtGroup::checkedChanged, checkBox, &QCheckBox::setChecked);
    m_connections << connect(checkBox, &QCheckBox::toggled, this, &FiltersPage::onFiltersChanged);
}

void FiltersPage::strechFirstColumn()
{
    QHeaderView* header = fileFilterView->header();
    if (header->count() < FileSystemFilter::ColumnCount)
        return;
    // A fixed size column: fitting it to its contents would measure rows on every change.
    header->setStretchLastSection(false);
    header->setSectionResizeMode(FileSystemFilter::PathColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(FileSystemFilter::SizeColumn, QHeaderView::Fixed);
    header->resizeSection(FileSystemFilter::SizeColumn, SizeColumnWidth);
}

void FiltersPage::onFiltersChanged()
{
    if (m_partition)
        m_partition->setFiltersChanged(true);
}

void FiltersPage::blockGui()
{
    calculateButton->setEnabled(false);
    tabWidget->setEnabled(false);
    sizeCalculationProgressBar->setValue(0);
    setCalculationShown(true);
    emit filtersCalculationsStarted();
}

void FiltersPage::setCalculationShown(bool shown)
{
    sizeCalculation_info->setVisible(shown);
    sizeCalculationProgressBar->setVisible(shown);
}

void FiltersPage::updateCalculatedSize()
{
    const MigrationDestPartition* partition = m_partition.data();
    if (!partition) {
        dataToMigrateParam->setValue(QString());
        return;
    }
    const QString sizes = QStringLiteral("%1 / %2").arg(partition->used().toString(), partition->size().toString());
    if (partition->isCalculating()) {
        dataToMigrateParam->setValue(tr("CALCULATING...") + QLatin1Char(' ') + sizes);
        sizeCalculationProgressBar->setValue(partition->calculationProgress());
        return;
    }
    dataToMigrateParam->setValue(sizes);
    if (!m_calculationRunning)
        return;
    m_calculationRunning = false;
    setCalculationShown(false);
    tabWidget->setEnabled(true);
    calculateButton->setEnabled(!partition->letter().isEmpty());
    emit filtersCalculationsFinished();
}

} // namespace Velmora::Migration
