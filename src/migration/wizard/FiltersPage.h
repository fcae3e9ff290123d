#pragma once

#include "migration/wizard/PageBase.h"

#include <QList>
#include <QMap>
#include <QMetaObject>
#include <QPointer>

class QCheckBox;
class QLabel;
class QPushButton;
class QTabWidget;
class QTreeView;

namespace Velmora::Gui {
class ParamValueWidget;
}
namespace Velmora::System {
class MigrationDestPartition;
}

namespace Velmora::Migration {

class SizeCalculationProgressBar;

// What of one partition goes across: its files and folders as a tree with checkboxes, and four
// kinds of files that can be left behind as a whole. Also asks for the size that the filters
// leave, and tells when that answer is in.
class FiltersPage : public PageBase
{
    Q_OBJECT

public:
    explicit FiltersPage(QWidget* parent = nullptr);

    System::MigrationDestPartition* partition() const { return m_partition.data(); }
    void setPartition(System::MigrationDestPartition* partition);

signals:
    void filtersCalculationsStarted();
    void filtersCalculationsFinished();
    void partitionDataChanged();

public slots:
    void updateCalculatedSize();
    void strechFirstColumn();
    void blockGui();
    void onFiltersChanged();

private:
    QWidget* buildFilesTab();
    QWidget* buildTypesTab();
    void bindCategory(int category, QCheckBox* checkBox);
    void setCalculationShown(bool shown);

    QPointer<System::MigrationDestPartition> m_partition;
    QList<QMetaObject::Connection> m_connections;
    // Set from the moment a size is asked for until its answer is complete, whoever asked.
    bool m_calculationRunning = false;
    QTabWidget* tabWidget;
    QTreeView* fileFilterView;
    QMap<int, QCheckBox*> categoryBoxes;
    Gui::ParamValueWidget* dataToMigrateParam;
    QPushButton* calculateButton;
    QLabel* sizeCalculation_info;
    SizeCalculationProgressBar* sizeCalculationProgressBar;
};

} // namespace Velmora::Migration
