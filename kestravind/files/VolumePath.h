#pragma once

#include "common/UniqueFd.h"

#include <optional>
#include <string>
#include <vector>

namespace Velmora::Daemon::Files {

// A path of the program's form below a volume. The program names a volume by its mount point,
// where Windows would have a letter, and joins the names below it with a backslash:
// "/mnt/data\Users\alex". A slash separates as well, so "/mnt/data/Users/alex" is the same path.
struct VolumePath {
    std::string mountPoint;              // as the caller gave it
    std::vector<std::string> components; // below the mount point; never "." or ".."

    // Finds the volume of `path` among `mountPoints` (the longest that holds it) and the names
    // below it. Relative paths, NUL bytes and ".." that would climb above the mount point give
    // nothing.
    static std::optional<VolumePath> locate(const std::string& path, const std::vector<std::string>& mountPoints);

    // Both at once, for a path that must lie on one known volume.
    static std::optional<VolumePath> locate(const std::string& path, const std::string& mountPoint)
    {
        return locate(path, std::vector<std::string>{mountPoint});
    }
};

// Opens paths without ever following a symbolic link and without leaving the volume it starts
// on: openat2() with RESOLVE_NO_SYMLINKS, RESOLVE_BENEATH and RESOLVE_NO_XDEV where the kernel has
// it, else one O_NOFOLLOW step per name with a device check at each step. Every call reports
// failure through errno; ELOOP means a symbolic link was in the way, EXDEV another file system.
class SafeOpen
{
public:
    enum class Mode { Automatic, PerComponent };
    explicit SafeOpen(Mode mode = Mode::Automatic) : m_mode(mode) {}

    // An absolute path from the root of the name space; no component may be a symbolic link.
    // Used for mount points and for folders that the asking user names.
    UniqueFd openAbsolute(const std::string& path, int flags) const;

    // `components` below the open directory `base`, on the same file system as `base`.
    UniqueFd openBeneath(int base, const std::vector<std::string>& components, int flags) const;

    // The directory of `path` on its volume: the mount point opened as an absolute path, then the
    // components beneath it.
    UniqueFd openDirectory(const VolumePath& path) const;

private:
    UniqueFd openStepwise(int base, const std::vector<std::string>& components, int flags, bool checkDevice) const;
    Mode m_mode;
};

} // namespace Velmora::Daemon::Files
