#include "files/SystemPathsQuery.h"

#include "files/FilesLog.h"
#include "files/ScopedUserAccess.h"
#include "files/VolumePath.h"

#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

namespace Velmora::Daemon::Files {

namespace Wire = Velmora::Message;

namespace {

// What the system on the root file system cannot run without; homes, /opt and /srv are the
// user's to leave behind.
const char* const RootSystemNames[] = {"bin", "boot", "etc", "lib", "lib32", "lib64", "libx32", "sbin", "usr", "var"};
const char* const IgnoredNames[] = {"lost+found", "swapfile", "swap.img"};
const char* const TrashPrefix = ".Trash-";

bool isBootVolume(const std::string& mountPoint)
{
    return mountPoint == "/boot" || mountPoint == "/boot/efi" || mountPoint == "/efi";
}

std::string programPath(const std::string& mountPoint, const std::string& name)
{
    return mountPoint + '\\' + name;
}

std::vector<std::string> topLevelNames(int folder)
{
    std::vector<std::string> names;
    DIR* entries = ::fdopendir(::dup(folder));
    if (!entries)
        return names;
    while (const dirent* entry = ::readdir(entries)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    ::closedir(entries);
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

Wire::MigrationFilterSystemPaths SystemPathsQuery::run(const Wire::MigrationFilterSystemPaths& request,
    const std::string& mountPoint, const PeerCredentials& peer) const
{
    Wire::MigrationFilterSystemPaths answer;
    answer.set_driveid(request.driveid());
    answer.set_partitionid(request.partitionid());
    if (mountPoint.empty()) {
        answer.set_code(Wire::NOT_FOUND);
        return answer;
    }
    const ScopedUserAccess access(peer);
    const UniqueFd root = access.active() ? SafeOpen().openAbsolute(mountPoint, O_RDONLY | O_DIRECTORY) : UniqueFd();
    if (!root.valid()) {
        qCWarning(filesLog, "System paths of %s refused for user %u: %s", mountPoint.c_str(), peer.uid, std::strerror(errno));
        answer.set_code(errno == EACCES || errno == EPERM ? Wire::ACCESS_DENIED : Wire::NOT_FOUND);
        return answer;
    }

    const bool rootVolume = mountPoint == "/";
    for (const std::string& name : topLevelNames(root.get())) {
        const bool ignored = std::find(std::begin(IgnoredNames), std::end(IgnoredNames), name) != std::end(IgnoredNames)
            || name.compare(0, std::strlen(TrashPrefix), TrashPrefix) == 0;
        if (ignored) {
            answer.add_systemignoredpaths(programPath(mountPoint, name));
            continue;
        }
        // Merged /usr makes /bin and /lib links, which must go across as much as the folders.
        const bool systemName = std::find(std::begin(RootSystemNames), std::end(RootSystemNames), name) != std::end(RootSystemNames);
        if (isBootVolume(mountPoint) || (rootVolume && systemName))
            answer.add_systempaths(programPath(mountPoint, name));
    }
    answer.set_code(Wire::SUCCESS);
    return answer;
}

} // namespace Velmora::Daemon::Files
