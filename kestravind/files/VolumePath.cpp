#include "files/VolumePath.h"

#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <fcntl.h>

namespace Velmora::Daemon::Files {

namespace {

bool isSeparator(char c) { return c == '/' || c == '\\'; }

std::string withoutTrailingSlash(std::string mountPoint)
{
    while (mountPoint.size() > 1 && mountPoint.back() == '/')
        mountPoint.pop_back();
    return mountPoint;
}

// Whether `path` lies on the volume mounted at `mountPoint` (already without a trailing slash).
bool holds(const std::string& mountPoint, const std::string& path)
{
    if (mountPoint.empty() || path.compare(0, mountPoint.size(), mountPoint) != 0)
        return false;
    return mountPoint == "/" || path.size() == mountPoint.size() || isSeparator(path[mountPoint.size()]);
}

std::string joined(const std::vector<std::string>& components)
{
    std::string path;
    for (const std::string& name : components) {
        if (!path.empty())
            path += '/';
        path += name;
    }
    return path.empty() ? std::string(".") : path;
}

long openat2(int base, const std::string& path, int flags, unsigned long long resolve)
{
    open_how how {};
    how.flags = static_cast<unsigned long long>(flags | O_CLOEXEC);
    how.resolve = resolve;
    return ::syscall(SYS_openat2, base, path.c_str(), &how, sizeof how);
}

constexpr unsigned long long Confined = RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS | RESOLVE_BENEATH | RESOLVE_NO_XDEV;

} // namespace

std::optional<VolumePath> VolumePath::locate(const std::string& path, const std::vector<std::string>& mountPoints)
{
    if (path.empty() || path.front() != '/' || path.find('\0') != std::string::npos)
        return std::nullopt;
    const std::string* best = nullptr;
    std::string bestRoot;
    for (const std::string& mountPoint : mountPoints) {
        std::string root = withoutTrailingSlash(mountPoint);
        if (holds(root, path) && (!best || root.size() > bestRoot.size())) {
            best = &mountPoint;
            bestRoot = std::move(root);
        }
    }
    if (!best)
        return std::nullopt;

    VolumePath result;
    result.mountPoint = *best;
    size_t start = bestRoot == "/" ? 1 : bestRoot.size();
    while (start <= path.size()) {
        size_t end = start;
        while (end < path.size() && !isSeparator(path[end]))
            ++end;
        const std::string name = path.substr(start, end - start);
        if (name == "..") {
            if (result.components.empty())
                return std::nullopt;
            result.components.pop_back();
        } else if (!name.empty() && name != ".") {
            result.components.push_back(name);
        }
        start = end + 1;
    }
    return result;
}

UniqueFd SafeOpen::openAbsolute(const std::string& path, int flags) const
{
    const std::optional<VolumePath> located = VolumePath::locate(path, std::string("/"));
    if (!located) {
        errno = EINVAL;
        return UniqueFd();
    }
    if (m_mode == Mode::Automatic) {
        const long fd = openat2(AT_FDCWD, path, flags, RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS);
        if (fd >= 0 || errno != ENOSYS)
            return UniqueFd(static_cast<int>(fd));
    }
    UniqueFd root(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!root.valid())
        return root;
    return openStepwise(root.get(), located->components, flags, false);
}

UniqueFd SafeOpen::openBeneath(int base, const std::vector<std::string>& components, int flags) const
{
    if (m_mode == Mode::Automatic) {
        const long fd = openat2(base, joined(components), flags, Confined);
        if (fd >= 0 || errno != ENOSYS)
            return UniqueFd(static_cast<int>(fd));
    }
    return openStepwise(base, components, flags, true);
}

UniqueFd SafeOpen::openDirectory(const VolumePath& path) const
{
    UniqueFd root = openAbsolute(path.mountPoint, O_PATH | O_DIRECTORY);
    if (!root.valid())
        return root;
    return openBeneath(root.get(), path.components, O_RDONLY | O_DIRECTORY);
}

UniqueFd SafeOpen::openStepwise(int base, const std::vector<std::string>& components, int flags, bool checkDevice) const
{
    struct stat baseStat {};
    if (checkDevice && ::fstat(base, &baseStat) != 0)
        return UniqueFd();
    if (components.empty())
        return UniqueFd(::openat(base, ".", flags | O_CLOEXEC));
    UniqueFd current;
    for (size_t i = 0; i < components.size(); ++i) {
        const bool last = i + 1 == components.size();
        // O_PATH with O_NOFOLLOW would hand out the link itself; O_DIRECTORY makes a link fail.
        const int stepFlags = last ? flags | O_NOFOLLOW | O_CLOEXEC : O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
        UniqueFd next(::openat(current.valid() ? current.get() : base, components[i].c_str(), stepFlags));
        if (!next.valid()) {
            const int error = errno;
            struct stat link {};
            const bool isLink = (error == ENOTDIR || error == ELOOP)
                && ::fstatat(current.valid() ? current.get() : base, components[i].c_str(), &link, AT_SYMLINK_NOFOLLOW) == 0
                && S_ISLNK(link.st_mode);
            errno = isLink ? ELOOP : error;
            return next;
        }
        struct stat step {};
        if (checkDevice && (::fstat(next.get(), &step) != 0 || step.st_dev != baseStat.st_dev)) {
            errno = EXDEV;
            return UniqueFd();
        }
        current = std::move(next);
    }
    return current;
}

} // namespace Velmora::Daemon::Files
