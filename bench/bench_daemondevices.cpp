// The real service's drive list of this machine (sysfs, udev or libblkid, the mount table,
// statvfs, then the message as it goes on the wire), against `lsblk -J -b -O` run as a child
// process over the same devices, side by side in one run. The service's answer should cost no
// more than the tool's.

#include "devices/DriveRegistry.h"

#include <benchmark/benchmark.h>

#include <QLoggingCategory>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

extern char** environ;

using namespace Velmora::Daemon::Devices;

namespace {

void BM_DriveList(benchmark::State& state)
{
    const std::unique_ptr<DriveRegistry> registry = liveDriveRegistry(false);
    std::size_t bytes = 0;
    int drives = 0;
    for (auto _ : state) {
        const Velmora::Message::SystemInfo info = registry->rescan();
        const std::string payload = info.SerializeAsString();
        benchmark::DoNotOptimize(payload.data());
        bytes = payload.size();
        drives = info.drives_size();
    }
    if (drives == 0)
        state.SkipWithError("no drive found on this machine");
    state.counters["drives"] = drives;
    state.counters["payload_bytes"] = static_cast<double>(bytes);
}

// Runs lsblk with its output on a pipe, reads all of it and waits for it, as a program that
// wanted the same facts from the tool would.
std::size_t runLsblk()
{
    int pipeEnds[2];
    if (::pipe(pipeEnds) != 0)
        return 0;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipeEnds[0]);
    char* const arguments[] = {const_cast<char*>("lsblk"), const_cast<char*>("-J"), const_cast<char*>("-b"),
        const_cast<char*>("-O"), nullptr};
    pid_t child = 0;
    const int spawned = posix_spawnp(&child, "lsblk", &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipeEnds[1]);
    std::size_t total = 0;
    char buffer[16384];
    for (ssize_t got; spawned == 0 && (got = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;)
        total += static_cast<std::size_t>(got);
    ::close(pipeEnds[0]);
    int status = 0;
    if (spawned != 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return 0;
    return total;
}

void BM_Lsblk(benchmark::State& state)
{
    std::size_t bytes = 0;
    for (auto _ : state)
        bytes = runLsblk();
    if (bytes == 0)
        state.SkipWithError("lsblk failed");
    state.counters["output_bytes"] = static_cast<double>(bytes);
}

} // namespace

BENCHMARK(BM_DriveList)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Lsblk)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv)
{
    // A device this process may not open says so once per scan; that is no part of the figures.
    QLoggingCategory::setFilterRules(QStringLiteral("kestravind.devices.debug=false"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
