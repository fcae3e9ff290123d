#pragma once

#include "migration/wizard/PageBase.h"

#include <QList>
#include <QMap>
#include <QMetaObject>
#include <QStringList>
#include <QTimer>
#include <QWidget>

class QLabel;
class QPushButton;
class QStackedWidget;

namespace Velmora::Migration {

class ErrorPage;
class FiltersPage;
class FinishPage;
class Migration;
class PartitionSizePage;

// The face of a migration inside the main window: a title, the pages of the road from choosing
// the drives to the end of the run, and the row of buttons that leads along it. Talks only to the
// migration model and the plan; the pages are shown by the wizard itself, not by a QWizard.
class MigrationWizard : public QWidget
{
    Q_OBJECT

public:
    enum ButtonId { BackButton = 1, NextButton = 2, StartButton = 3, CancelButton = 4, HomeButton = 5, ApplyButton = 6 };
    Q_ENUM(ButtonId)

    explicit MigrationWizard(Migration* migration, QWidget* parent = nullptr);

    int currentPage() const { return currentPageId; }
    PageBase* page(int id) const { return pages.value(id); }
    QPushButton* button(int id) const { return buttons.value(id); }
    QString title() const;

    // The share of the estimation done: the partitions finished and the one in hand, each
    // counting `total` parts of a hundred; nothing to measure shows 0.
    static int estimationPercent(int done, int total, int progress);

public slots:
    void onDestinationDriveChanged();
    void onSourceDriveChanged();
    void onDestinationPartitionDataChange();
    void onDestinationDriveInitialized();

private slots:
    void updateButtons(int pageId);
    void onRequestFiltersPage(int partitionId);
    void onFiltersApplied();
    void onFiltersCalculationsStarted();
    void onFiltersCalculationsFinished();
    void onPartisionSizeCalculationDataChanged();
    void onPartitionSizeCalculationFinished();
    void nextPage();
    void prevPage();
    void startMigration();
    void cancelMigration();
    void setPage(Velmora::Migration::PageBase::PageId id);
    void home();
    void onMigrationFailed(QString errorMsg);
    void onMigrationFinished();
    void onMigrationStarted();
    void onDetectedFaultedFilesOrDirectories(QStringList faultedFiles, QStringList faultedDirectories);

private:
    void buildForm();
    void createPages();
    FiltersPage* filtersPage();
    PartitionSizePage* partitionSizePage() const;
    void addPage(int id, PageBase* page);
    void startPartitionsSizeCalculation();
    void calculateNextPartition();
    void stopEstimation();
    void updateNextButton();
    void handDrivesToPartitionPage();
    void checkDrivesPresent();

    QStringList faultedFiles;
    QStringList faultedDirectories;
    bool calculationPending = false;
    bool calculating = false;
    QList<int> partitionsToCalculate;
    int calculationsTotal = 0;
    int calculationsDone = -1;
    QMap<int, QPushButton*> buttons;
    Migration* migration;
    QMap<int, PageBase*> pages;
    int currentPageId = 0;
    QList<int> pageHistory{PageBase::InitPageId};
    QList<QMetaObject::Connection> destinationConnections;
    // A replanning changes every partition of the plan several times; whether the plan fits is
    // asked once, after the burst.
    QTimer nextButtonUpdate;

    struct Form {
        QLabel* titleLabel = nullptr;
        QStackedWidget* stackedWidget = nullptr;
        QPushButton* cancelButton = nullptr;
        QPushButton* backButton = nullptr;
        QPushButton* nextButton = nullptr;
        QPushButton* startButton = nullptr;
        QPushButton* applyButton = nullptr;
        QPushButton* homeButton = nullptr;
    } ui;
};

} // namespace Velmora::Migration
