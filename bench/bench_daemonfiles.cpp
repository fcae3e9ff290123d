// The service's file work against the tools a Linux user would measure it with, in one run, on a
// loop-mounted ext4 that the benchmark makes under a folder of its own and removes at the end:
// - file categories of a tree of 200,000 files with the program's own rules, against `du -sb` of
//   the same tree, with warm caches and, where the caches can be dropped (root), cold;
// - the speed test (128 MiB in blocks of 4 MiB, direct I/O) against fio's sequential write and
//   read with the same sizes.
// Needs root (mount, losetup); says so and does nothing without it.

#include "files/FileCategoryScan.h"
#include "files/SpeedTest.h"
#include "system/FileCategories.h"

#include <benchmark/benchmark.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

using namespace Velmora::Daemon::Files;
namespace Wire = Velmora::Message;

namespace {

constexpr int TopFolders = 20;
constexpr int SubFolders = 100;
constexpr int FilesPerFolder = 100; // 20 * 100 * 100 = 200,000 files
constexpr uint64_t TestFileSize = uint64_t(128) << 20;
constexpr uint32_t TestBlockSize = uint32_t(4) << 20;

std::string g_home;   // the folder of this run
std::string g_mount;  // the ext4 mounted below it
std::string g_tree;   // the 200,000 files
std::string g_loop;   // the loop device this run attached
bool g_canDropCaches = false;
std::map<std::string, double> g_results; // seconds per run, or bytes per second

bool sh(const std::string& command)
{
    return std::system(command.c_str()) == 0;
}

bool dropCaches()
{
    ::sync();
    const int fd = ::open("/proc/sys/vm/drop_caches", O_WRONLY | O_CLOEXEC);
    const bool done = fd >= 0 && ::write(fd, "3\n", 2) == 2;
    if (fd >= 0)
        ::close(fd);
    return done;
}

void makeTree()
{
    static const char* const extensions[] = {".jpg", ".mp3", ".txt", ".cpp", ".h", ".o", ".so", ".png", ".mp4", ".pdf", ""};
    ::mkdir(g_tree.c_str(), 0755);
    int n = 0;
    for (int top = 0; top < TopFolders; ++top) {
        const std::string topPath = g_tree + "/t" + std::to_string(top);
        ::mkdir(topPath.c_str(), 0755);
        for (int sub = 0; sub < SubFolders; ++sub) {
            const std::string folder = topPath + "/s" + std::to_string(sub);
            ::mkdir(folder.c_str(), 0755);
            for (int i = 0; i < FilesPerFolder; ++i, ++n) {
                const std::string path = folder + "/f" + std::to_string(i) + extensions[n % 11];
                const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
                // Sparse sizes: the walk reads metadata only, and writing 200,000 files' data would
                // cost minutes of setup.
                if (fd >= 0 && ::ftruncate(fd, off_t((n * 7919) % 65536)) == 0)
                    ::close(fd);
            }
        }
    }
}

bool setUp()
{
    if (::geteuid() != 0) {
        std::fprintf(stderr, "bench_daemonfiles needs root (loop mount); nothing measured\n");
        return false;
    }
    char pattern[] = "/tmp/kestravind-bench-XXXXXX";
    if (!::mkdtemp(pattern))
        return false;
    g_home = pattern;
    g_mount = g_home + "/mnt";
    g_tree = g_mount + "/tree";
    const std::string image = g_home + "/volume.img";
    ::mkdir(g_mount.c_str(), 0755);
    // Written out, not sparse: a drive has all its blocks, and a sparse image would make the test
    // that lands on fresh ground pay for the allocations of the file system that holds the image.
    if (!sh("dd if=/dev/zero of=" + image + " bs=4M count=256 oflag=direct status=none && mkfs.ext4 -q -F -N 262144 " + image))
        return false;
    // Direct I/O on the backing file too, so that the speeds are the disk's and not the page
    // cache's of the file that stands for the drive.
    FILE* losetup = ::popen(("losetup --direct-io=on --find --show " + image).c_str(), "r");
    char device[64] = {};
    if (!losetup || !std::fgets(device, sizeof device, losetup)) {
        if (losetup)
            ::pclose(losetup);
        return false;
    }
    ::pclose(losetup);
    g_loop = std::string(device, std::strcspn(device, "\n"));
    if (g_loop.rfind("/dev/loop", 0) != 0 || !sh("mount " + g_loop + " " + g_mount))
        return false;
    std::fprintf(stderr, "Making 200,000 files in %s...\n", g_tree.c_str());
    makeTree();
    g_canDropCaches = dropCaches();
    return true;
}

void tearDown()
{
    // Only what this run made: the mount below its own folder, then the folder.
    if (g_home.rfind("/tmp/kestravind-bench-", 0) != 0)
        return;
    sh("umount " + g_mount);
    if (g_loop.rfind("/dev/loop", 0) == 0)
        sh("losetup -d " + g_loop);
    sh("rm -rf --one-file-system " + g_home);
}

Wire::FileTypeStructureRequest programRequest()
{
    Wire::FileTypeStructureRequest request;
    request.set_partitionid(-1);
    for (int category : {2, 5, 4, 3, 0, 1}) {
        auto* type = request.add_filetypes();
        type->set_id(uint32_t(category));
        type->set_extensions(Velmora::System::categoryExtensions(category).toStdString());
        type->set_paths(Velmora::System::categoryPaths(category).toStdString());
    }
    return request;
}

void scanOnce(benchmark::State& state)
{
    static const Wire::FileTypeStructureRequest request = programRequest();
    const std::atomic_bool stop {false};
    const auto answer = FileCategoryScan().run(request, {g_mount}, stop, {});
    if (answer.code() != Wire::SUCCESS)
        state.SkipWithError("scan failed");
}

void duOnce(benchmark::State& state)
{
    if (!sh("du -sb " + g_mount + " > /dev/null"))
        state.SkipWithError("du failed");
}

template <void (*Run)(benchmark::State&)>
void timed(benchmark::State& state, const char* name)
{
    double total = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        Run(state);
        total += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    g_results[name] = total / double(state.iterations());
}

void BM_FileCategoriesWarm(benchmark::State& state) { timed<scanOnce>(state, "categories warm"); }
void BM_DuWarm(benchmark::State& state) { timed<duOnce>(state, "du warm"); }
// Cold caches: each round drops them before du and again before the scan, so that both meet the
// same load of a shared machine, round by round.
void BM_FileCategoriesBesideDuCold(benchmark::State& state)
{
    if (!g_canDropCaches) {
        state.SkipWithError("caches cannot be dropped here");
        return;
    }
    double du = 0;
    double scan = 0;
    const auto seconds = [](void (*run)(benchmark::State&), benchmark::State& state) {
        dropCaches();
        const auto start = std::chrono::steady_clock::now();
        run(state);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    for (auto _ : state) {
        du += seconds(duOnce, state);
        scan += seconds(scanOnce, state);
    }
    g_results["du cold"] = du / double(state.iterations());
    g_results["categories cold"] = scan / double(state.iterations());
    state.counters["du_ms"] = g_results["du cold"] * 1e3;
    state.counters["categories_ms"] = g_results["categories cold"] * 1e3;
}

// fio's own figure, bytes per second, for one direction.
double fio(const char* direction)
{
    QProcess process;
    process.start(QStringLiteral("fio"), {QStringLiteral("--name=bench"), QString::fromStdString("--filename=" + g_mount + "/fiodir/fio.bin"),
        QStringLiteral("--rw=%1").arg(QLatin1String(direction)), QStringLiteral("--bs=4M"), QStringLiteral("--size=128M"),
        QStringLiteral("--direct=1"), QStringLiteral("--ioengine=psync"), QStringLiteral("--end_fsync=1"),
        QStringLiteral("--output-format=json")});
    if (!process.waitForFinished(120000) || process.exitCode() != 0)
        return 0;
    const QJsonObject job = QJsonDocument::fromJson(process.readAllStandardOutput()).object().value("jobs").toArray().at(0).toObject();
    return job.value(direction[0] == 'w' ? "write" : "read").toObject().value("bw_bytes").toDouble();
}

// Each round runs fio's write and read, then the speed test, so that both see the same load of
// a shared machine; the figures are the means over the rounds.
void BM_SpeedTestBesideFio(benchmark::State& state)
{
    if (QStandardPaths::findExecutable(QStringLiteral("fio")).isEmpty()) {
        state.SkipWithError("fio is not installed");
        return;
    }
    Wire::DiskPerformanceRequest request;
    request.set_filesize(TestFileSize);
    request.set_blocksize(TestBlockSize);
    std::map<std::string, double> sums;
    for (auto _ : state) {
        // fio too writes into a new folder of the volume's top level, as the speed test does: ext4
        // places such folders in block groups of their own, and the image's regions differ.
        ::mkdir((g_mount + "/fiodir").c_str(), 0700);
        sums["fio write"] += fio("write");
        sums["fio read"] += fio("read");
        ::unlink((g_mount + "/fiodir/fio.bin").c_str());
        ::rmdir((g_mount + "/fiodir").c_str());
        const std::atomic_bool stop {false};
        const Wire::DiskPerformance answer = SpeedTest().run(request, {g_mount}, stop);
        if (answer.code() != Wire::SUCCESS) {
            state.SkipWithError("speed test failed");
            return;
        }
        sums["speed test write"] += answer.writespeed();
        sums["speed test read"] += answer.readspeed();
    }
    for (const auto& sum : sums) {
        g_results[sum.first] = sum.second / double(state.iterations());
        std::string counter = sum.first + "_MBps";
        std::replace(counter.begin(), counter.end(), ' ', '_');
        state.counters[counter] = g_results[sum.first] / 1e6;
    }
}

BENCHMARK(BM_DuWarm)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(BM_FileCategoriesWarm)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(BM_FileCategoriesBesideDuCold)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(BM_SpeedTestBesideFio)->Unit(benchmark::kMillisecond)->Iterations(8)->UseRealTime();

void ratio(const char* what, const std::string& ours, const std::string& theirs, const char* goal)
{
    if (g_results.count(ours) && g_results.count(theirs) && g_results[theirs] > 0)
        std::printf("%-34s %.3f (goal %s)\n", what, g_results[ours] / g_results[theirs], goal);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (!setUp()) {
        tearDown();
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    tearDown();
    ratio("categories / du -sb, warm:", "categories warm", "du warm", "<= 1.2");
    ratio("categories / du -sb, cold:", "categories cold", "du cold", "<= 1.2");
    ratio("speed test / fio, write:", "speed test write", "fio write", "0.9 .. 1.1");
    ratio("speed test / fio, read:", "speed test read", "fio read", "0.9 .. 1.1");
    return 0;
}
