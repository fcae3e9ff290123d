#include "files/DirectoryListing.h"

#include "files/FilesLog.h"
#include "files/PathRules.h"
#include "files/ScopedUserAccess.h"
#include "files/TreeWalker.h"
#include "files/VolumePath.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

namespace Velmora::Daemon::Files {

namespace Wire = Velmora::Message;

namespace {

// One answer is one frame; a folder of millions of entries would make a frame that no peer takes.
constexpr int MaxEntries = 100000;

Wire::Code codeOf(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
    case ELOOP:
    case EXDEV:
        return Wire::ACCESS_DENIED;
    case ENOENT:
    case ENOTDIR:
        return Wire::NOT_FOUND;
    default:
        return Wire::FAILED;
    }
}

} // namespace

DirectoryListing::Result DirectoryListing::run(const Wire::FileListRequest& request,
    const std::vector<std::string>& mountPoints, const PeerCredentials& peer, const std::atomic_bool& stop) const
{
    Result result;
    result.list.set_path(request.dirpath());
    const std::optional<VolumePath> path = VolumePath::locate(request.dirpath(), mountPoints);
    if (!path) {
        qCWarning(filesLog, "Listing of %s refused: not a path on a known volume", request.dirpath().c_str());
        result.code = Wire::INVALID_REQUEST;
        return result;
    }

    const ScopedUserAccess access(peer);
    if (!access.active()) {
        result.code = Wire::FAILED;
        return result;
    }
    const UniqueFd folder = SafeOpen().openDirectory(*path);
    struct stat folderInfo {};
    if (!folder.valid() || ::fstat(folder.get(), &folderInfo) != 0) {
        result.code = codeOf(errno);
        qCWarning(filesLog, "Listing of %s refused for user %u: %s", request.dirpath().c_str(), peer.uid, std::strerror(errno));
        return result;
    }

    // Sizes of subfolders go in one bucket; a hard link counts once within each subfolder.
    const PathRules everything(0);
    TreeWalker walker(everything, stop);
    std::vector<uint64_t> sums(1);
    auto& files = *result.list.mutable_files();
    auto& folders = *result.list.mutable_directories();
    DIR* entries = ::fdopendir(::dup(folder.get()));
    if (!entries) {
        result.code = codeOf(errno);
        return result;
    }
    while (const dirent* entry = ::readdir(entries)) {
        const std::string name = entry->d_name;
        if (stop.load())
            break;
        if (name == "." || name == "..")
            continue;
        if (files.size() + folders.size() >= size_t(MaxEntries)) {
            qCWarning(filesLog, "Listing of %s cut off after %d entries", request.dirpath().c_str(), MaxEntries);
            break;
        }
        struct stat info {};
        if (::fstatat(folder.get(), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (S_ISREG(info.st_mode) || S_ISLNK(info.st_mode)) {
            files[name] = uint64_t(info.st_size);
        } else if (S_ISDIR(info.st_mode) && info.st_dev == folderInfo.st_dev) {
            sums[0] = 0;
            const UniqueFd sub(::openat(folder.get(), entry->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (sub.valid())
                walker.walk(sub.get(), sums);
            folders[name] = sums[0];
        }
    }
    ::closedir(entries);
    if (stop.load()) {
        result.code = Wire::CANCELED;
        result.list.clear_files();
        result.list.clear_directories();
    }
    return result;
}

} // namespace Velmora::Daemon::Files
