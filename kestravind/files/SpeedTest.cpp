#include "files/SpeedTest.h"

#include "files/FilesLog.h"
#include "common/UniqueFd.h"
#include "files/VolumePath.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>

namespace Velmora::Daemon::Files {

namespace Wire = Velmora::Message;

namespace {

constexpr const char* TestFileName = "speed-test.bin";
constexpr uint64_t SpareRoom = uint64_t(64) << 20;

using Clock = std::chrono::steady_clock;

struct AlignedFree {
    void operator()(char* p) const { std::free(p); }
};

// The folder and file of one run; both go in the destructor, through the descriptors the run
// made them with, so that nothing but our own two names can ever be removed.
class Workspace
{
public:
    explicit Workspace(UniqueFd volume) : m_volume(std::move(volume)) {}
    ~Workspace()
    {
        m_file.reset();
        if (m_fileMade && ::unlinkat(m_folder.get(), TestFileName, 0) != 0)
            qCWarning(filesLog, "Cannot remove the speed test file %s: %s", m_folderName.c_str(), std::strerror(errno));
        m_folder.reset();
        if (!m_folderName.empty() && ::unlinkat(m_volume.get(), m_folderName.c_str(), AT_REMOVEDIR) != 0)
            qCWarning(filesLog, "Cannot remove the speed test folder %s: %s", m_folderName.c_str(), std::strerror(errno));
    }

    bool make(uint64_t size, bool* direct)
    {
        std::random_device random;
        for (int attempt = 0; attempt < 8 && m_folderName.empty(); ++attempt) {
            const std::string name = ".kestravind-speed-" + std::to_string(random());
            if (::mkdirat(m_volume.get(), name.c_str(), 0700) == 0)
                m_folderName = name;
            else if (errno != EEXIST)
                return false;
        }
        if (m_folderName.empty())
            return false;
        m_folder = UniqueFd(::openat(m_volume.get(), m_folderName.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!m_folder.valid())
            return false;
        const int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        m_file = UniqueFd(::openat(m_folder.get(), TestFileName, flags | O_DIRECT, 0600));
        *direct = m_file.valid();
        // A file system without direct I/O still gets a fair test: synced writes, dropped pages.
        if (!m_file.valid() && errno == EINVAL)
            m_file = UniqueFd(::openat(m_folder.get(), TestFileName, flags, 0600));
        m_fileMade = m_file.valid();
        if (!m_fileMade)
            return false;
        // Blocks allocated up front, as any writer of a known size does: the test then measures
        // the drive, not the file system's allocator, and a volume without room fails here.
        const int error = ::posix_fallocate(m_file.get(), 0, off_t(size));
        errno = error;
        return error == 0 || error == EOPNOTSUPP || error == EINVAL;
    }

    int file() const { return m_file.get(); }

private:
    UniqueFd m_volume;
    UniqueFd m_folder;
    UniqueFd m_file;
    std::string m_folderName;
    bool m_fileMade = false;
};

enum class Outcome { Done, Stopped, Failed };

Outcome transfer(int fd, char* buffer, uint64_t fileSize, uint64_t blockSize, bool write, const std::atomic_bool& stop)
{
    for (uint64_t offset = 0; offset < fileSize;) {
        if (stop.load(std::memory_order_relaxed))
            return Outcome::Stopped;
        const ssize_t done = write ? ::pwrite(fd, buffer, blockSize, off_t(offset)) : ::pread(fd, buffer, blockSize, off_t(offset));
        if (done <= 0) {
            if (done < 0 && errno == EINTR)
                continue;
            qCWarning(filesLog, "Speed test %s failed at byte %llu: %s", write ? "write" : "read",
                static_cast<unsigned long long>(offset), done < 0 ? std::strerror(errno) : "end of file");
            return Outcome::Failed;
        }
        // Direct I/O moves whole blocks; a short transfer can only happen at a failing device.
        if (uint64_t(done) != blockSize) {
            qCWarning(filesLog, "Speed test moved a short block at byte %llu", static_cast<unsigned long long>(offset));
            return Outcome::Failed;
        }
        offset += blockSize;
    }
    return Outcome::Done;
}

double perSecond(uint64_t bytes, Clock::duration elapsed)
{
    const double seconds = std::chrono::duration<double>(elapsed).count();
    return seconds > 0 ? double(bytes) / seconds : 0.0;
}

} // namespace

Wire::DiskPerformance SpeedTest::run(const Wire::DiskPerformanceRequest& request, const std::vector<std::string>& mountPoints,
    const std::atomic_bool& stop) const
{
    Wire::DiskPerformance answer;
    answer.set_driveid(request.driveid());
    const uint64_t blockSize = request.blocksize();
    const uint64_t fileSize = request.filesize() - request.filesize() % (blockSize ? blockSize : 1);
    if (blockSize < Alignment || blockSize > MaxBlockSize || blockSize % Alignment || fileSize == 0 || fileSize > MaxFileSize) {
        answer.set_code(Wire::INVALID_REQUEST);
        return answer;
    }

    // The first writable volume of the drive with room for the file and some to spare.
    UniqueFd volume;
    bool tooFull = false;
    for (const std::string& mountPoint : mountPoints) {
        UniqueFd candidate = SafeOpen().openAbsolute(mountPoint, O_RDONLY | O_DIRECTORY);
        struct statvfs info {};
        if (!candidate.valid() || ::fstatvfs(candidate.get(), &info) != 0 || (info.f_flag & ST_RDONLY))
            continue;
        if (uint64_t(info.f_bavail) * info.f_frsize < fileSize + SpareRoom) {
            tooFull = true;
            continue;
        }
        volume = std::move(candidate);
        break;
    }
    if (!volume.valid()) {
        qCWarning(filesLog, "No volume of drive %u %s for a speed test", request.driveid(),
            tooFull ? "has room" : "is mounted writable");
        answer.set_code(tooFull ? Wire::FAILED : Wire::NOT_FOUND);
        return answer;
    }

    Workspace workspace(std::move(volume));
    bool direct = false;
    if (!workspace.make(fileSize, &direct)) {
        qCWarning(filesLog, "Cannot make the speed test file on drive %u: %s", request.driveid(), std::strerror(errno));
        answer.set_code(Wire::FAILED);
        return answer;
    }
    if (!direct)
        qCInfo(filesLog, "The file system of drive %u has no direct I/O; testing through the page cache", request.driveid());

    std::unique_ptr<char, AlignedFree> buffer(static_cast<char*>(std::aligned_alloc(Alignment, blockSize)));
    if (!buffer) {
        answer.set_code(Wire::FAILED);
        return answer;
    }
    // Incompressible data, so that a controller that compresses gains nothing.
    std::mt19937_64 pattern(request.driveid() + 1);
    for (uint64_t i = 0; i < blockSize; i += sizeof(uint64_t)) {
        const uint64_t word = pattern();
        std::memcpy(buffer.get() + i, &word, sizeof word);
    }

    const auto finish = [&](Outcome outcome) {
        answer.set_code(outcome == Outcome::Stopped ? Wire::CANCELED : Wire::FAILED);
        return answer;
    };
    const auto writeStart = Clock::now();
    Outcome outcome = transfer(workspace.file(), buffer.get(), fileSize, blockSize, true, stop);
    if (outcome == Outcome::Done && ::fsync(workspace.file()) != 0) {
        qCWarning(filesLog, "Speed test sync failed: %s", std::strerror(errno));
        outcome = Outcome::Failed;
    }
    if (outcome != Outcome::Done)
        return finish(outcome);
    const auto writeTime = Clock::now() - writeStart;

    if (!direct)
        ::posix_fadvise(workspace.file(), 0, 0, POSIX_FADV_DONTNEED);
    const auto readStart = Clock::now();
    outcome = transfer(workspace.file(), buffer.get(), fileSize, blockSize, false, stop);
    if (outcome != Outcome::Done)
        return finish(outcome);
    const auto readTime = Clock::now() - readStart;

    answer.set_code(Wire::SUCCESS);
    answer.set_writespeed(perSecond(fileSize, writeTime));
    answer.set_readspeed(perSecond(fileSize, readTime));
    return answer;
}

} // namespace Velmora::Daemon::Files
