// Cost of the migration plan and its filters. The resize runs on every checkbox toggle of the
// wizard and must stay far below a frame (16 ms); a directory listing of 100,000 names must go into
// the tree in one row operation, and the list of unchecked paths must be cheap on a big tree.
// Resize arguments: partitions, log level (2 = Info, the Debug ledger is skipped; 1 = Debug, every
// line goes to the log file).

#include "BenchmarkMain.h"
#include "logger/Logger.h"
#include "migration/FileSystemFilter.h"
#include "migration/FileSystemNode.h"
#include "migration/MigrationDestDrive.h"
#include "migration/MigrationDestPartition.h"
#include "system/Drive.h"
#include "system/Partition.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

using Velmora::Migration::FileSystemFilter;
using Velmora::Migration::FileSystemNode;
using Velmora::System::Bytes;
using Velmora::System::Drive;
using Velmora::System::MigrationDestDrive;
using Velmora::System::MigrationDestPartition;
using Velmora::System::Partition;

namespace {

constexpr qint64 MiB = qint64(1) << 20;
constexpr qint64 GiB = qint64(1) << 30;

// EFI, MSR, the system, recovery and data partitions up to `count`, on a 4 TiB source.
std::unique_ptr<Drive> sourceWith(int count)
{
    auto source = std::make_unique<Drive>(1, QStringLiteral("Source"), QStringLiteral("S1"), QString(),
        QStringLiteral("FW"), Bytes(4096 * GiB), 4, 4, true, QStringLiteral("SATA"));
    qint64 offset = MiB;
    for (int id = 1; id <= count; ++id) {
        const char* guid = id == 1 ? Partition::efiSystemGuid
            : id == 2              ? Partition::microsoftReservedGuid
            : id == count          ? Partition::recoveryGuid
                                   : "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7";
        const qint64 size = id <= 2 ? 100 * MiB : id == count ? 500 * MiB : (8 + id % 5) * GiB;
        const qint64 used = size / 3;
        auto* partition = new Partition(id, id > 2 && id < count ? QStringLiteral("%1:").arg(id) : QString(),
            QString(), Bytes(size), Bytes(used), Bytes(offset), Partition::GPT, 7, QString::fromLatin1(guid), QString(),
            QStringLiteral("NTFS"), id == 1, false);
        if (id == 3)
            partition->setOs(QStringLiteral("Windows"));
        source->addPartition(partition);
        offset += size;
    }
    return source;
}

std::unique_ptr<MigrationDestDrive> planOf(const Drive& source, qint64 capacity)
{
    Drive target(2, QStringLiteral("Target"), QStringLiteral("T1"), QString(), QStringLiteral("FW"), Bytes(capacity), 4,
        4, true, QStringLiteral("NVMe"));
    auto plan = std::make_unique<MigrationDestDrive>(target);
    for (int id : source.partitions().keys()) {
        if (id >= 0)
            plan->addPartition(new MigrationDestPartition(*source.partition(id)));
    }
    return plan;
}

void BM_ResizeDrive(benchmark::State& state)
{
    Velmora::Logger::setLevel(static_cast<int>(state.range(1)));
    const auto source = sourceWith(static_cast<int>(state.range(0)));
    const auto plan = planOf(*source, 512 * GiB);
    bool fits = true;
    for (auto _ : state)
        fits = plan->resizePartitionsToFitDrive() && fits;
    if (!fits)
        state.SkipWithError("plan does not fit");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// What a checkbox costs: one partition goes out of the plan and comes back, two replans.
void BM_ToggleCheckbox(benchmark::State& state)
{
    Velmora::Logger::setLevel(static_cast<int>(state.range(1)));
    const auto source = sourceWith(static_cast<int>(state.range(0)));
    const auto plan = planOf(*source, 512 * GiB);
    MigrationDestPartition* toggled = plan->migrationPartition(4);
    for (auto _ : state) {
        toggled->setMigrate(false);
        toggled->setMigrate(true);
    }
    state.SetItemsProcessed(state.iterations() * 2);
}

// Baseline: the arithmetic of a proportional share over the same number of sizes, without objects.
void BM_ShareArithmetic(benchmark::State& state)
{
    std::vector<qint64> sizes(static_cast<size_t>(state.range(0)));
    for (size_t i = 0; i < sizes.size(); ++i)
        sizes[i] = static_cast<qint64>(8 + i % 5) * GiB;
    std::vector<qint64> result(sizes.size());
    for (auto _ : state) {
        qint64 total = 0;
        for (qint64 size : sizes)
            total += size;
        const double factor = static_cast<double>(512 * GiB) / static_cast<double>(total);
        for (size_t i = 0; i < sizes.size(); ++i)
            result[i] = static_cast<qint64>(std::ceil(std::llround(static_cast<double>(sizes[i]) * factor) / double(MiB))) * MiB;
        benchmark::DoNotOptimize(result.data());
    }
}

QStringList names(int count, const QString& pattern)
{
    QStringList result;
    result.reserve(count);
    for (int i = 0; i < count; ++i)
        result.append(pattern.arg(i));
    return result;
}

QList<Bytes> sizes(int count)
{
    QList<Bytes> result;
    result.reserve(count);
    for (int i = 0; i < count; ++i)
        result.append(Bytes(qint64(4096 + i)));
    return result;
}

void BM_AddFiles(benchmark::State& state)
{
    Velmora::Logger::setLevel(Velmora::Logger::Info);
    const int count = static_cast<int>(state.range(0));
    const QStringList fileNames = names(count, QStringLiteral("file%1.dat"));
    const QList<Bytes> fileSizes = sizes(count);
    int inserts = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto filter = std::make_unique<FileSystemFilter>(QStringLiteral("C:"));
        QObject::connect(filter.get(), &QAbstractItemModel::rowsInserted, [&inserts] { ++inserts; });
        state.ResumeTiming();
        filter->addFiles(QStringLiteral("C:\\"), fileNames, fileSizes);
        state.PauseTiming();
        if (filter->rowCount() != count)
            state.SkipWithError("rows lost");
        filter.reset();
        state.ResumeTiming();
    }
    if (inserts != state.iterations())
        state.SkipWithError("more than one row operation per listing");
    state.SetItemsProcessed(state.iterations() * count);
}

// A tree of about `nodes` entries: 1,000 directories of files, every tenth directory unchecked and
// one file unchecked in every other one, so that the walk has both kinds of work.
void BM_UncheckedPaths(benchmark::State& state)
{
    Velmora::Logger::setLevel(Velmora::Logger::Info);
    const int directories = 1000;
    const int filesEach = static_cast<int>(state.range(0)) / directories - 1;
    FileSystemFilter filter(QStringLiteral("C:"));
    const QStringList directoryNames = names(directories, QStringLiteral("dir%1"));
    filter.addDirs(QStringLiteral("C:\\"), directoryNames, sizes(directories));
    const QStringList fileNames = names(filesEach, QStringLiteral("f%1.bin"));
    const QList<Bytes> fileSizes = sizes(filesEach);
    for (int d = 0; d < directories; ++d) {
        const QString path = QStringLiteral("C:\\") + directoryNames.at(d);
        filter.addDirs(path, {}, {});
        filter.addFiles(path, fileNames, fileSizes);
        FileSystemNode* directory = filter.nodeForPath(path);
        if (d % 10 == 0)
            directory->setCheckState(Qt::Unchecked);
        else if (d % 2 == 1)
            directory->child(0)->setCheckState(Qt::Unchecked);
    }
    int found = 0;
    for (auto _ : state) {
        const QStringList paths = filter.uncheckedPaths();
        found = paths.size();
        benchmark::DoNotOptimize(found);
    }
    if (found != directories / 10 + directories / 2)
        state.SkipWithError("unexpected number of paths");
    state.counters["paths"] = found;
    state.counters["nodes"] = directories * (filesEach + 1);
}

} // namespace

BENCHMARK(BM_ResizeDrive)
    ->ArgNames({"partitions", "level"})
    ->Args({5, 2})->Args({128, 2})->Args({128, 1})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ToggleCheckbox)->ArgNames({"partitions", "level"})->Args({128, 2})->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ShareArithmetic)->ArgNames({"partitions"})->Arg(128)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_AddFiles)->ArgNames({"names"})->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UncheckedPaths)->ArgNames({"nodes"})->Arg(1000000)->Unit(benchmark::kMillisecond);

KESTRAVIN_BENCHMARK_MAIN()
