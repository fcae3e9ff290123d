// Cost of the destination bar in the migration wizard. A replanning resizes every partition of the
// plan, each with a change signal; the bar must fold that burst into a single layout, and that
// layout with its repaint must stay far below a frame (16 ms), with 128 partitions on the bar.
// Baselines of the same run: the replanning with no bar attached, and a repaint of the bar that
// moves no box.

#include "BenchmarkMain.h"
#include "logger/Logger.h"
#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "migration/widgets/MigrationDestDriveWidget.h"
#include "system/Drive.h"
#include "system/Partition.h"

#include <QElapsedTimer>
#include <QThread>

#include <chrono>
#include <memory>

using Velmora::System::Bytes;
using Velmora::System::Drive;
using Velmora::System::DriveWidget;
using Velmora::System::MigrationDestDrive;
using Velmora::System::MigrationDestDriveWidget;
using Velmora::System::MigrationDestPartition;
using Velmora::System::Partition;

namespace {

constexpr qint64 MiB = qint64(1) << 20;
constexpr qint64 GiB = qint64(1) << 30;
constexpr int Partitions = 128;

// EFI, MSR, the system, data partitions and recovery on a 4 TiB source, planned onto 512 GiB.
struct Plan {
    Plan()
    {
        Drive target(2, QStringLiteral("Target"), QStringLiteral("T1"), QString(), QStringLiteral("FW"),
            Bytes(512 * GiB), 4, 4, true, QStringLiteral("NVMe"));
        destination = std::make_unique<MigrationDestDrive>(target);
        qint64 offset = MiB;
        for (int id = 1; id <= Partitions; ++id) {
            const char* guid = id == 1 ? Partition::efiSystemGuid
                : id == 2              ? Partition::microsoftReservedGuid
                : id == Partitions     ? Partition::recoveryGuid
                                       : "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7";
            const qint64 size = id <= 2 ? 100 * MiB : id == Partitions ? 500 * MiB : (8 + id % 5) * GiB;
            Partition source(id, QStringLiteral("%1:").arg(id), QString(), Bytes(size), Bytes(size / 3),
                Bytes(offset), Partition::GPT, 7, QString::fromLatin1(guid), QString(), QStringLiteral("NTFS"), id == 1,
                false);
            if (id == 3)
                source.setOs(QStringLiteral("Windows"));
            destination->addPartition(new MigrationDestPartition(source));
            offset += size;
        }
        destination->resizePartitionsToFitDrive();
        toggled = destination->migrationPartition(4);
    }

    // What a checkbox of the wizard does: one partition leaves or rejoins the plan, every other
    // partition is resized.
    void replan() { toggled->setMigrate(!toggled->migrate()); }

    std::unique_ptr<MigrationDestDrive> destination;
    MigrationDestPartition* toggled = nullptr;
};

// The bar as the wizard shows it, laid out once.
std::unique_ptr<MigrationDestDriveWidget> barOf(MigrationDestDrive* drive)
{
    auto bar = std::make_unique<MigrationDestDriveWidget>();
    bar->setDrive(drive);
    bar->resize(1280, DriveWidget::FixedHeight);
    bar->show();
    QThread::msleep(2 * DriveWidget::LayoutDelayMs);
    QCoreApplication::processEvents();
    return bar;
}

// Baseline: the replanning alone, as the model pays for it without a bar.
void BM_ReplanWithoutBar(benchmark::State& state)
{
    Velmora::Logger::setLevel(Velmora::Logger::Info);
    Plan plan;
    for (auto _ : state)
        plan.replan();
}

// The same replanning with the bar attached: every change signal only restarts the layout timer,
// nothing is painted before the layout. Then, untimed, the timer is let run out and the layouts
// are counted.
void BM_ReplanWithBar(benchmark::State& state)
{
    Velmora::Logger::setLevel(Velmora::Logger::Info);
    Plan plan;
    const auto bar = barOf(plan.destination.get());
    int layouts = 0;
    QObject::connect(bar.get(), &DriveWidget::layoutUpdated, [&layouts] { ++layouts; });
    for (auto _ : state) {
        plan.replan();
        QCoreApplication::sendPostedEvents();
        state.PauseTiming();
        QThread::msleep(2 * DriveWidget::LayoutDelayMs);
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
    if (layouts != state.iterations())
        state.SkipWithError("a replanning did not cause exactly one layout");
    state.counters["layouts_per_replan"] = double(layouts) / double(state.iterations());
}

// The one layout that follows a replanning, with its repaint: from the timer's expiry to the end
// of the paint, with every box moved and resized.
void BM_LayoutAndRepaintAfterReplan(benchmark::State& state)
{
    Velmora::Logger::setLevel(Velmora::Logger::Info);
    Plan plan;
    const auto bar = barOf(plan.destination.get());
    int layouts = 0;
    QObject::connect(bar.get(), &DriveWidget::layoutUpdated, [&layouts] { ++layouts; });
    for (auto _ : state) {
        plan.replan();
        // Whatever the burst posted is handled before the layout is due, as in the program.
        QCoreApplication::sendPostedEvents();
        QThread::msleep(2 * DriveWidget::LayoutDelayMs);
        const int before = layouts;
        QElapsedTimer clock;
        clock.start();
        QCoreApplication::processEvents();
        state.SetIterationTime(double(clock.nsecsElapsed()) * 1e-9);
        if (layouts != before + 1)
            state.SkipWithError("the replanning did not cause exactly one layout");
    }
    state.counters["boxes"] = bar->partitionWidgets().size();
}

// Baseline: a repaint of the same bar whose boxes stay where they are.
void BM_RepaintOnly(benchmark::State& state)
{
    Velmora::Logger::setLevel(Velmora::Logger::Info);
    Plan plan;
    const auto bar = barOf(plan.destination.get());
    for (auto _ : state)
        bar->repaint();
}

} // namespace

BENCHMARK(BM_ReplanWithoutBar)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ReplanWithBar)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LayoutAndRepaintAfterReplan)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RepaintOnly)->Unit(benchmark::kMicrosecond);

KESTRAVIN_WIDGET_BENCHMARK_MAIN()
