// The copy of a migration against the tools a Linux user would copy a tree with, in one run: a
// tree of 20,000 files (1 GiB in all) on a loop-mounted ext4 copied onto a fresh ext4 on a second
// loop device by the service's copy engine, by `rsync -aHAXS` and by `cp -a`, in turn within each
// iteration, with the caches dropped before each copy. Every copy is timed from its first mount to
// its last unmount, as the engine mounts and unmounts both file systems itself. Goal: the engine no slower than
// 1.2 times the faster of the other two. Needs root (mount, losetup); says so and does nothing
// without it. Everything lives in a folder of its own under TMPDIR, removed at the end.

#include "copy/FileCopy.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QProcess>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

using namespace Velmora::Daemon::Copy;
namespace Wire = Velmora::Message;

namespace {

constexpr int Folders = 20;
constexpr int FilesPerFolder = 1000;            // 20,000 files
constexpr uint64_t TreeBytes = uint64_t(1) << 30; // 1 GiB, in files of 4 KiB to about 100 KiB
constexpr int ImageMiB = 1600;

struct Rig {
    std::string home, source, destination, sourceLoop, destinationLoop;
};
Rig g;
std::vector<double> g_engine, g_rsync, g_cp;

bool run(const QString& program, const QStringList& arguments, QString* output = nullptr)
{
    QProcess process;
    process.start(program, arguments);
    const bool done = process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (output)
        *output = QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    if (!done)
        std::fprintf(stderr, "%s failed: %s\n", qPrintable(program), process.readAllStandardError().constData());
    return done;
}

QString q(const std::string& text) { return QString::fromStdString(text); }

bool attach(const std::string& image, std::string& loop)
{
    QString device;
    if (!run("truncate", {"-s", QString::number(ImageMiB) + "M", q(image)}) || !run("mkfs.ext4", {"-q", q(image)})
        || !run("losetup", {"--find", "--show", q(image)}, &device) || !device.startsWith("/dev/loop"))
        return false;
    loop = device.toStdString();
    return true;
}

bool makeTree()
{
    if (!run("mount", {q(g.sourceLoop), q(g.source)}))
        return false;
    const uint64_t average = TreeBytes / (Folders * FilesPerFolder);
    std::string block(2 * average, 'k');
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = char('a' + i % 23);
    for (int folder = 0; folder < Folders; ++folder) {
        const std::string path = g.source + "/folder-" + std::to_string(folder);
        ::mkdir(path.c_str(), 0755);
        for (int file = 0; file < FilesPerFolder; ++file) {
            // Sizes spread evenly around the average, so that the tree holds 1 GiB.
            const uint64_t size = average + uint64_t((file * 7919) % 1000) * average / 1000 - average / 2;
            std::ofstream(path + "/file-" + std::to_string(file) + ".dat", std::ios::binary).write(block.data(), std::streamsize(size));
        }
    }
    return run("umount", {q(g.source)});
}

void dropCaches()
{
    ::sync();
    std::ofstream("/proc/sys/vm/drop_caches") << "3\n";
}

bool freshDestination()
{
    // Inode tables zeroed now rather than by a kernel thread in the middle of the copy.
    return run("mkfs.ext4", {"-q", "-F", "-E", "lazy_itable_init=0,lazy_journal_init=0", q(g.destinationLoop)});
}

double seconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

double engineCopy()
{
    const FileCopyJob job {{g.sourceLoop, "ext4", ""}, {g.destinationLoop, "ext4", ""}, {}};
    std::atomic_bool stop {false};
    const auto start = std::chrono::steady_clock::now();
    const Wire::FileCopyReport report = FileCopy(g.home + "/state").run(job, stop, {});
    const double elapsed = seconds(start);
    return report.code() == Wire::SUCCESS ? elapsed : -1;
}

// A tool copying between the two file systems, mounted as the engine mounts them; like the
// engine's, its time runs from the first mount to the last unmount.
double toolCopy(const QString& program, const QStringList& arguments)
{
    const auto start = std::chrono::steady_clock::now();
    if (!run("mount", {"-o", "ro,noload", q(g.sourceLoop), q(g.source)}))
        return -1;
    if (!run("mount", {q(g.destinationLoop), q(g.destination)})) {
        run("umount", {q(g.source)});
        return -1;
    }
    const bool copied = run(program, arguments);
    const bool destinationUnmounted = run("umount", {q(g.destination)});
    const bool sourceUnmounted = run("umount", {q(g.source)});
    return copied && destinationUnmounted && sourceUnmounted ? seconds(start) : -1;
}

void BM_CopyBesideRsyncAndCp(benchmark::State& state)
{
    int turn = 0;
    for (auto _ : state) {
        double engine = 0, rsync = 0, cp = 0;
        // Each iteration runs the three in another order, so that none always goes first.
        for (int step = 0; step < 3; ++step) {
            if (!freshDestination()) {
                state.SkipWithError("mkfs.ext4 failed");
                return;
            }
            dropCaches();
            switch ((step + turn) % 3) {
            case 0: engine = engineCopy(); break;
            case 1: rsync = toolCopy("rsync", {"-aHAXS", q(g.source) + "/", q(g.destination) + "/"}); break;
            default: cp = toolCopy("cp", {"-a", "-T", q(g.source), q(g.destination)}); break;
            }
        }
        ++turn;
        if (engine < 0 || rsync < 0 || cp < 0) {
            state.SkipWithError("a copy failed");
            return;
        }
        state.SetIterationTime(engine);
        g_engine.push_back(engine);
        g_rsync.push_back(rsync);
        g_cp.push_back(cp);
    }
}
BENCHMARK(BM_CopyBesideRsyncAndCp)->Unit(benchmark::kMillisecond)->Iterations(5)->UseManualTime();

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

void tearDown()
{
    // A copy that failed half-way may have left its mounts.
    for (const std::string& mount : {g.source, g.destination})
        ::umount2(mount.c_str(), UMOUNT_NOFOLLOW);
    for (const std::string& loop : {g.sourceLoop, g.destinationLoop}) {
        if (!loop.empty())
            run("losetup", {"-d", q(loop)});
    }
    // Only what this run made, by name, inside its own folder.
    for (const char* name : {"/source.img", "/destination.img"})
        ::unlink((g.home + name).c_str());
    for (const char* name : {"/source", "/destination", "/state"})
        ::rmdir((g.home + name).c_str());
    ::rmdir(g.home.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (::geteuid() != 0) {
        std::printf("bench_daemoncopy needs root (mount, losetup); nothing measured\n");
        return 0;
    }
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/bench_daemoncopy-XXXXXX";
    if (!::mkdtemp(pattern.data()))
        return 1;
    g.home = pattern;
    g.source = g.home + "/source";
    g.destination = g.home + "/destination";
    ::mkdir(g.source.c_str(), 0700);
    ::mkdir(g.destination.c_str(), 0700);
    if (attach(g.home + "/source.img", g.sourceLoop) && attach(g.home + "/destination.img", g.destinationLoop) && makeTree()) {
        benchmark::Initialize(&argc, argv);
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
        const double engine = median(g_engine), rsync = median(g_rsync), cp = median(g_cp);
        std::printf("median of %zu: engine %.2f s, rsync -aHAXS %.2f s, cp -a %.2f s; engine / faster = %.2f (goal <= 1.20)\n",
            g_engine.size(), engine, rsync, cp, engine / std::max(1e-9, std::min(rsync, cp)));
    }
    tearDown();
    return 0;
}
