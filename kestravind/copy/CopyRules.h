#pragma once

#include "Migration.pb.h"

#include <optional>
#include <string>
#include <vector>

namespace Velmora::Daemon::Copy {

// The program names a file by the volume's mount point (its "letter", empty for a volume that is
// not mounted) followed by the names below it, joined with backslashes: "/home\alex\Videos". The
// copy works on private mounts, so these paths become rsync rules anchored at the volume's root,
// and faulted files go back into the program's form.
namespace CopyRules {

// The names below `volumeRoot` of a path of the program's form; nothing for a path elsewhere or
// one whose ".." climbs out of the volume.
std::optional<std::vector<std::string>> components(const std::string& programPath, const std::string& volumeRoot);

// `relative` is a path below the volume's root with slashes, as rsync writes it.
std::string programPath(const std::string& volumeRoot, const std::string& relative);

// The rules of an rsync filter file: what the filter leaves out (paths, then extensions of files)
// is excluded, except what lies in one of its system paths, which the system needs and the program
// never leaves out. Names compare without regard to ASCII case, as the program compares them.
std::string filterText(const Velmora::Message::MigrationFilter& filter, const std::string& volumeRoot);

} // namespace CopyRules

} // namespace Velmora::Daemon::Copy
