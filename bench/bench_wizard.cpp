// Cost of the migration wizard where the user feels it. Toggling one partition on the partition
// page replans the destination, refreshes every row and lays the destination bar out again: all
// of it must fit in a frame (16 ms), here with 128 partitions against a baseline of 8. Expanding
// a folder of 100,000 entries in the filters tree must not hold the window longer than 250 ms,
// against a folder of 1,000; the listing of such a folder arriving into an opened folder is
// measured too, since that is the moment the user waits for after the click.

#include "BenchmarkMain.h"
#include "logger/Logger.h"
#include "migration/FileSystemFilter.h"
#include "migration/Migration.h"
#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "migration/wizard/FiltersPage.h"
#include "migration/wizard/MigrationWizard.h"
#include "migration/wizard/PartitionDetailsWidget.h"
#include "migration/wizard/PartitionSizePage.h"
#include "system/Drive.h"
#include "system/Partition.h"
#include "system/System.h"

#include <QCheckBox>
#include <QPushButton>
#include <QThread>
#include <QTreeView>

#include <memory>

using namespace Velmora;
using System::Bytes;
using System::MigrationDestPartition;
using System::Partition;

namespace {

constexpr qint64 MiB = qint64(1) << 20;
constexpr qint64 GiB = qint64(1) << 30;
const char* const BasicDataGuid = "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7";

// A 4 TiB source of `count` data partitions, the first holding the system, and an empty 8 TiB
// destination, chosen in a wizard that shows the partition page with every partition ready.
struct PlannedWizard {
    System::System system;
    Migration::Migration model{nullptr, &system};
    Migration::MigrationWizard wizard{&model};

    explicit PlannedWizard(int count)
    {
        auto* source = new System::Drive(1, QStringLiteral("Source"), QStringLiteral("S1"), QString(),
            QStringLiteral("FW"), Bytes(4096 * GiB), 4, 4, true, QStringLiteral("SATA"));
        qint64 offset = MiB;
        for (int id = 1; id <= count; ++id) {
            const qint64 size = (8 + id % 5) * GiB;
            auto* partition = new Partition(id, QString(), QStringLiteral("Volume %1").arg(id), Bytes(size),
                Bytes(size / 3), Bytes(offset), Partition::GPT, 7, QString::fromLatin1(BasicDataGuid), QString(),
                QStringLiteral("NTFS"), false, false);
            if (id == 1)
                partition->setOs(QStringLiteral("Windows"));
            source->addPartition(partition);
            offset += size;
        }
        system.addDrive(source);
        system.addDrive(new System::Drive(2, QStringLiteral("Target"), QStringLiteral("T1"), QString(),
            QStringLiteral("FW"), Bytes(8192 * GiB), 4, 4, true, QStringLiteral("NVMe")));
        model.setSourceDriveId(1);
        model.setDestDriveId(2);
        for (int id : model.destinationDrive()->partitions().keys())
            model.destinationDrive()->migrationPartition(id)->markInitialized();
        wizard.resize(1280, 900);
        wizard.show();
        wizard.button(Migration::MigrationWizard::NextButton)->click();
        QApplication::processEvents();
    }
    Migration::PartitionSizePage* page() const
    {
        return static_cast<Migration::PartitionSizePage*>(wizard.page(Migration::PageBase::PartitionSizePageId));
    }
};

// Lets the destination bar's layout timer (10 ms) come due without running it, so that the timed
// part holds its work but not the wait.
void letLayoutTimerComeDue(benchmark::State& state)
{
    state.PauseTiming();
    QThread::msleep(12);
    state.ResumeTiming();
}

// Arguments: partitions, log level (1 = Debug, as the program runs, the replanning writing its
// ledger to the log file; 2 = Info, without it).
void BM_TogglePartition(benchmark::State& state)
{
    Logger::setLevel(static_cast<int>(state.range(1)));
    PlannedWizard planned(static_cast<int>(state.range(0)));
    const QList<Migration::PartitionDetailsWidget*> rows = planned.page()->rows();
    QCheckBox* checkBox = rows.last()->findChild<QCheckBox*>(QStringLiteral("partitionCheckBox"));
    for (auto _ : state) {
        checkBox->click();
        QApplication::processEvents();
        letLayoutTimerComeDue(state);
        QApplication::processEvents();
    }
    state.counters["rows"] = rows.size();
}
BENCHMARK(BM_TogglePartition)
    ->ArgNames({"partitions", "level"})
    ->Args({8, 1})->Args({128, 1})->Args({128, 2})
    ->Unit(benchmark::kMillisecond);

// A partition of drive C: whose root holds one folder of `entries` files, loaded but closed, on
// the filters page as the wizard shows it.
struct BigFolder {
    Partition source{3, QStringLiteral("C:"), QStringLiteral("Windows"), Bytes(200 * GiB), Bytes(60 * GiB),
        Bytes(MiB), Partition::GPT, 7, QString::fromLatin1(BasicDataGuid), QString(), QStringLiteral("NTFS"), false,
        false};
    MigrationDestPartition partition{source};
    Migration::FiltersPage page;
    QTreeView* view = nullptr;
    QStringList names;
    QList<Bytes> sizes;

    explicit BigFolder(int entries)
    {
        for (int i = 0; i < entries; ++i) {
            names.append(QStringLiteral("scan-%1.pdf").arg(i, 6, 10, QLatin1Char('0')));
            sizes.append(Bytes(qint64(100 + i % 900) * 1024));
        }
        Migration::FileSystemFilter* tree = partition.fileSystemFilter();
        tree->addDirs(QStringLiteral("C:"), {QStringLiteral("Scans")}, {Bytes(-1)});
        page.setPartition(&partition);
        page.resize(1100, 600);
        page.show();
        view = page.findChild<QTreeView*>(QStringLiteral("fileFilterView"));
        QApplication::processEvents();
    }
    QModelIndex folder() const { return view->model()->index(0, 0); }
    void fill() { partition.fileSystemFilter()->addFiles(QStringLiteral("C:\\Scans"), names, sizes); }
    void settle()
    {
        QApplication::processEvents();
        view->viewport()->repaint();
    }
};

void BM_ExpandLoadedFolder(benchmark::State& state)
{
    Logger::setLevel(Logger::Info);
    BigFolder big(static_cast<int>(state.range(0)));
    big.fill();
    for (auto _ : state) {
        big.view->expand(big.folder());
        big.settle();
        state.PauseTiming();
        big.view->collapse(big.folder());
        big.settle();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_ExpandLoadedFolder)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_ListingArrivesInOpenFolder(benchmark::State& state)
{
    Logger::setLevel(Logger::Info);
    for (auto _ : state) {
        state.PauseTiming();
        auto big = std::make_unique<BigFolder>(static_cast<int>(state.range(0)));
        big->view->expand(big->folder());
        big->settle();
        state.ResumeTiming();
        big->fill();
        big->settle();
        state.PauseTiming();
        big.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_ListingArrivesInOpenFolder)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

KESTRAVIN_WIDGET_BENCHMARK_MAIN()
