#include "copy/FileCopy.h"

#include "copy/CopyLog.h"
#include "copy/CopyRules.h"
#include "copy/PrivateMount.h"
#include "copy/RsyncOutput.h"
#include "copy/RsyncRun.h"

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <set>

namespace Velmora::Daemon::Copy {

using Velmora::Message::FileCopyReport;
namespace Wire = Velmora::Message;

namespace {

using Clock = std::chrono::steady_clock;

// rsync: 23 is "some files could not be transferred", 24 "some files vanished while copying".
constexpr int PartialTransfer = 23;
constexpr int VanishedFiles = 24;
// A tree with more unreadable files than this is reported by its first ones.
constexpr size_t FaultLimit = 10000;
// The journal gets the first of rsync's complaints; the report has the files.
constexpr size_t LoggedErrorLines = 200;

FileCopyReport ended(Wire::Code code)
{
    FileCopyReport report;
    report.set_code(code);
    return report;
}

// File systems that hold owners, modes, ACLs and extended attributes; on the others only names,
// contents and times exist to be kept.
bool isPosix(const std::string& fileSystem)
{
    static const std::set<std::string> posix = {"ext2", "ext3", "ext4", "xfs", "btrfs", "f2fs", "jfs", "reiserfs"};
    return posix.count(fileSystem) != 0;
}

std::vector<std::string> rsyncArguments(const std::string& fileSystem, const std::string& filterFile,
    const std::string& from, const std::string& to)
{
    std::vector<std::string> arguments;
    // Times are kept to the nanosecond: with the default window rsync leaves a folder's time as
    // the copy made it when it differs from the source's by less than a second.
    if (isPosix(fileSystem))
        arguments = {"-aHAXS", "--numeric-ids", "--modify-window=-1"};
    else
        arguments = {"-rtS", "--modify-window=1"};
    // The destination is a fresh file system: writing files in place spares a temporary name and
    // a rename per file, and a stopped copy leaves a partial file either way.
    arguments.insert(arguments.end(), {"--inplace", "--filter=merge " + filterFile, from + '/', to + '/'});
    return arguments;
}

// What a file system holds beyond what it held when the copy began: bytes and files.
class DestinationUsage
{
public:
    explicit DestinationUsage(std::string mountPoint) : m_mountPoint(std::move(mountPoint))
    {
        const auto [bytes, files] = read();
        m_baseBytes = bytes;
        m_baseFiles = files;
    }
    // Bytes and files added since the start, from one look at the file system.
    std::pair<uint64_t, uint64_t> added() const
    {
        const auto [bytes, files] = read();
        return {sub(bytes, m_baseBytes), sub(files, m_baseFiles)};
    }

private:
    static uint64_t sub(uint64_t a, uint64_t b) { return a > b ? a - b : 0; }
    std::pair<uint64_t, uint64_t> read() const
    {
        struct statvfs info {};
        if (::statvfs(m_mountPoint.c_str(), &info) != 0)
            return {0, 0};
        return {uint64_t(info.f_blocks - info.f_bfree) * info.f_frsize, uint64_t(info.f_files - info.f_ffree)};
    }
    std::string m_mountPoint;
    uint64_t m_baseBytes = 0;
    uint64_t m_baseFiles = 0;
};

// rsync is done once the kernel holds the data, not the drive: a drive pulled or failing now
// shows only when its file system is written out. Errors of the write-back since the mount
// come back from syncfs, and a file system that hit one may have turned itself read-only.
bool writtenOut(const std::string& mountPoint, const std::string& device)
{
    const int fd = ::open(mountPoint.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        qCWarning(copyLog, "Cannot open %s to write the copy out: %s", mountPoint.c_str(), std::strerror(errno));
        return false;
    }
    const bool synced = ::syncfs(fd) == 0;
    const int syncError = errno;
    struct statvfs info {};
    const bool readOnly = ::fstatvfs(fd, &info) == 0 && (info.f_flag & ST_RDONLY) != 0;
    ::close(fd);
    if (!synced)
        qCWarning(copyLog, "Writing the copy out to %s failed: %s", device.c_str(), std::strerror(syncError));
    else if (readOnly)
        qCWarning(copyLog, "The file system on %s turned read-only during the copy", device.c_str());
    return synced && !readOnly;
}

bool isAbsoluteDevice(const std::string& path)
{
    return path.size() > 5 && path.compare(0, 5, "/dev/") == 0 && path.find("/..") == std::string::npos;
}

} // namespace

FileCopy::FileCopy(std::string stateDirectory, Options options)
    : m_stateDirectory(std::move(stateDirectory)), m_options(std::move(options))
{
}

FileCopyReport FileCopy::run(const FileCopyJob& job, const std::atomic_bool& stop, const ProgressHandler& progress) const
{
    try {
        return copy(job, stop, progress);
    } catch (const std::exception& error) {
        qCWarning(copyLog, "Copy of %s to %s failed: %s", job.source.device.c_str(), job.destination.device.c_str(),
            error.what());
    }
    return ended(Wire::FAILED);
}

FileCopyReport FileCopy::copy(const FileCopyJob& job, const std::atomic_bool& stop, const ProgressHandler& progress) const
{
    const CopyVolume& source = job.source;
    const CopyVolume& destination = job.destination;
    // The glue hands over no device for a partition its list does not hold (any more).
    if (source.device.empty() || destination.device.empty()) {
        qCWarning(copyLog, "Copy refused: the %s partition is not in the drive list",
            source.device.empty() ? "source" : "destination");
        return ended(Wire::NOT_FOUND);
    }
    if (!isAbsoluteDevice(source.device) || !isAbsoluteDevice(destination.device) || source.device == destination.device) {
        qCWarning(copyLog, "Copy refused: \"%s\" to \"%s\" are not two partitions", source.device.c_str(),
            destination.device.c_str());
        return ended(Wire::INVALID_REQUEST);
    }
    if (destination.fileSystem.empty()) {
        qCWarning(copyLog, "Copy refused: the destination %s has no file system", destination.device.c_str());
        return ended(Wire::INVALID_REQUEST);
    }
    if (!destination.mountPoint.empty()) {
        qCWarning(copyLog, "Copy refused: the destination %s is mounted at %s", destination.device.c_str(),
            destination.mountPoint.c_str());
        return ended(Wire::FAILED);
    }
    if (stop)
        return ended(Wire::CANCELED);

    // Declared in this order so that the mounts go before the folder that holds them.
    const std::unique_ptr<PrivateFolder> folder = PrivateFolder::make(m_stateDirectory);
    if (!folder)
        return ended(Wire::FAILED);
    const auto sourceTarget = folder->makeFolder("source");
    const auto destinationTarget = folder->makeFolder("destination");
    const auto filterFile = folder->writeFile("filter", CopyRules::filterText(job.filter, source.mountPoint));
    if (!sourceTarget || !destinationTarget || !filterFile)
        return ended(Wire::FAILED);
    const std::unique_ptr<PrivateMount> sourceMount = source.mountPoint.empty()
        ? PrivateMount::ofDevice(source.device, source.fileSystem, *sourceTarget, true)
        : PrivateMount::readOnlyView(source.mountPoint, *sourceTarget);
    if (!sourceMount)
        return ended(Wire::FAILED);
    const std::unique_ptr<PrivateMount> destinationMount
        = PrivateMount::ofDevice(destination.device, destination.fileSystem, *destinationTarget, false);
    if (!destinationMount)
        return ended(Wire::FAILED);

    // rsync's own progress lines cost a tenth of the copy's time; what the destination holds is
    // measured instead, and it is also what the copy takes from the room the plan gave it.
    FileCopyReport report;
    const DestinationUsage usage(*destinationTarget);
    Clock::time_point lastReport = Clock::now();
    const auto onTick = [&]() {
        if (Clock::now() - lastReport < m_options.reportInterval)
            return false;
        lastReport = Clock::now();
        const auto [bytes, files] = usage.added();
        if (bytes == report.copiedsize() && files == report.copiedfiles())
            return false;
        report.set_copiedsize(bytes);
        report.set_copiedfiles(files);
        if (progress) {
            FileCopyReport interim = report;
            interim.set_code(Wire::PROGRESS);
            progress(interim);
        }
        return true;
    };
    std::vector<std::string> faultedFiles, faultedDirectories;
    size_t unlisted = 0;
    size_t errorLines = 0;
    const auto onError = [&](std::string_view line) {
        if (++errorLines <= LoggedErrorLines)
            qCWarning(copyLog, "rsync: %.*s", int(line.size()), line.data());
        const auto fault = RsyncOutput::parseFault(line, *sourceTarget);
        if (!fault)
            return;
        auto& list = fault->directory ? faultedDirectories : faultedFiles;
        if (list.size() < FaultLimit)
            list.push_back(CopyRules::programPath(source.mountPoint, fault->relativePath));
        else
            ++unlisted;
    };

    const std::vector<std::string> arguments
        = rsyncArguments(source.fileSystem, *filterFile, *sourceTarget, *destinationTarget);
    std::string commandLine = m_options.rsync;
    for (const std::string& argument : arguments)
        commandLine += ' ' + argument;
    qCInfo(copyLog, "Copying %s (%s) to %s (%s), leaving out %d paths and %d extensions, keeping %d system paths: %s",
        source.device.c_str(), source.fileSystem.c_str(), destination.device.c_str(), destination.fileSystem.c_str(),
        job.filter.paths_size(), job.filter.extensions_size(), job.filter.systempaths_size(), commandLine.c_str());
    const RsyncRun::Result result = RsyncRun(m_options.rsync, arguments, m_options.stallLimit).run(stop, onError, onTick);
    const auto [bytes, files] = usage.added();
    report.set_copiedsize(bytes);
    report.set_copiedfiles(files);

    switch (result.outcome) {
    case RsyncRun::Outcome::Stopped:
        qCInfo(copyLog, "Copy of %s stopped on request after %llu bytes", source.device.c_str(),
            static_cast<unsigned long long>(report.copiedsize()));
        report.set_code(Wire::CANCELED);
        return report;
    case RsyncRun::Outcome::Exited:
        break;
    default:
        qCWarning(copyLog, "Copy of %s failed: rsync did not start, crashed or stalled", source.device.c_str());
        report.set_code(Wire::FAILED);
        return report;
    }

    const bool faultsNamed = !faultedFiles.empty() || !faultedDirectories.empty();
    const bool rsyncDone = result.exitCode == 0 || result.exitCode == VanishedFiles || (result.exitCode == PartialTransfer && faultsNamed);
    if (rsyncDone && !writtenOut(*destinationTarget, destination.device)) {
        qCWarning(copyLog, "Copy of %s to %s failed: the destination could not be written", source.device.c_str(),
            destination.device.c_str());
        report.set_code(Wire::FAILED);
        return report;
    }
    if (rsyncDone) {
        for (const std::string& file : faultedFiles)
            report.add_faultedfiles(file);
        for (const std::string& directory : faultedDirectories)
            report.add_faulteddirectories(directory);
        report.set_code(Wire::SUCCESS);
        if (unlisted > 0)
            qCWarning(copyLog, "%zu more files or folders could not be copied; only the first %zu of each kind are reported",
                unlisted, FaultLimit);
        qCInfo(copyLog, "Copy of %s to %s finished: %llu bytes, %zu faulted files, %zu faulted folders",
            source.device.c_str(), destination.device.c_str(), static_cast<unsigned long long>(report.copiedsize()),
            faultedFiles.size(), faultedDirectories.size());
        return report;
    }
    qCWarning(copyLog, "Copy of %s to %s failed: rsync ended with code %d", source.device.c_str(),
        destination.device.c_str(), result.exitCode);
    report.set_code(Wire::FAILED);
    return report;
}

} // namespace Velmora::Daemon::Copy
