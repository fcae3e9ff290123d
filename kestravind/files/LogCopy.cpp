#include "files/LogCopy.h"

#include "files/FilesLog.h"
#include "files/ScopedUserAccess.h"
#include "common/UniqueFd.h"
#include "files/VolumePath.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

namespace Velmora::Daemon::Files {

namespace Wire = Velmora::Message;

namespace {

// Hard limits, so that a log folder gone wild cannot fill the user's disk through us.
constexpr size_t MaxFiles = 64;

struct Source {
    std::string name;
    UniqueFd fd;
    off_t size = 0;
};

bool copyAll(int from, int to, off_t size)
{
    off_t offset = 0;
    while (offset < size) {
        const ssize_t sent = ::sendfile(to, from, &offset, size_t(size - offset));
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
    }
    return true;
}

} // namespace

LogCopy::LogCopy(std::string logDirectory, std::string logBaseName)
    : m_logDirectory(std::move(logDirectory))
    , m_logBaseName(std::move(logBaseName))
{
}

Wire::CopyLogFilesResponse LogCopy::run(const Wire::CopyLogFilesRequest& request, const PeerCredentials& peer) const
{
    Wire::CopyLogFilesResponse answer;
    answer.set_destinationdirectory(request.destinationdirectory());
    answer.set_logfilebasename(m_logBaseName);
    const std::string& destination = request.destinationdirectory();
    if (destination.empty() || destination.front() != '/') {
        qCWarning(filesLog, "Log files not copied: \"%s\" is not an absolute path", destination.c_str());
        answer.set_code(Wire::INVALID_REQUEST);
        return answer;
    }

    // The logs are the service's and opened as the service, before it takes the user's identity.
    std::vector<Source> sources;
    DIR* entries = ::opendir(m_logDirectory.c_str());
    const int logFolder = entries ? ::dirfd(entries) : -1;
    while (entries && sources.size() < MaxFiles) {
        const dirent* entry = ::readdir(entries);
        if (!entry)
            break;
        if (std::strncmp(entry->d_name, m_logBaseName.c_str(), m_logBaseName.size()) != 0)
            continue;
        Source source {entry->d_name, UniqueFd(::openat(logFolder, entry->d_name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC)), 0};
        struct stat info {};
        if (source.fd.valid() && ::fstat(source.fd.get(), &info) == 0 && S_ISREG(info.st_mode)) {
            source.size = info.st_size;
            sources.push_back(std::move(source));
        }
    }
    if (entries)
        ::closedir(entries);
    std::sort(sources.begin(), sources.end(), [](const Source& a, const Source& b) { return a.name < b.name; });

    const ScopedUserAccess access(peer);
    const UniqueFd folder = access.active() ? SafeOpen().openAbsolute(destination, O_PATH | O_DIRECTORY) : UniqueFd();
    struct stat folderInfo {};
    if (!folder.valid() || ::fstat(folder.get(), &folderInfo) != 0) {
        const bool missing = errno == ENOENT || errno == ENOTDIR;
        qCWarning(filesLog, "Log files not copied to \"%s\": %s", destination.c_str(), std::strerror(errno));
        answer.set_code(missing ? Wire::NOT_FOUND : Wire::ACCESS_DENIED);
        return answer;
    }
    if (folderInfo.st_uid != peer.uid) {
        qCWarning(filesLog, "Log files not copied to \"%s\": the folder belongs to user %u, not to user %u",
            destination.c_str(), folderInfo.st_uid, peer.uid);
        answer.set_code(Wire::ACCESS_DENIED);
        return answer;
    }

    uint32_t copied = 0;
    bool refused = false;
    for (const Source& source : sources) {
        UniqueFd target(::openat(folder.get(), source.name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!target.valid()) {
            qCWarning(filesLog, "Log file %s not copied to \"%s\": %s", source.name.c_str(), destination.c_str(), std::strerror(errno));
            refused = true;
            continue;
        }
        if (!copyAll(source.fd.get(), target.get(), source.size)) {
            qCWarning(filesLog, "Log file %s could not be copied: %s", source.name.c_str(), std::strerror(errno));
            ::unlinkat(folder.get(), source.name.c_str(), 0); // as the user, in the user's folder
            continue;
        }
        ++copied;
    }
    answer.set_filescopied(copied);
    answer.set_code(refused && copied == 0 ? Wire::ACCESS_DENIED : Wire::SUCCESS);
    qCInfo(filesLog, "%u log files copied to %s", copied, destination.c_str());
    return answer;
}

} // namespace Velmora::Daemon::Files
