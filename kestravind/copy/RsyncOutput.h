#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Velmora::Daemon::Copy::RsyncOutput {

// One line of rsync's --info=progress2:
// "  1,234,567  45%  12.34MB/s    0:00:01 (xfr#12, to-chk=3/20)"
struct Progress {
    uint64_t bytes = 0;
    uint64_t checkedEntries = 0; // entries of the file list dealt with
    uint64_t totalEntries = 0;   // grows while rsync is still listing folders
};
std::optional<Progress> parseProgress(std::string_view line);

// An error line that names a file or folder of the copied tree below `sourceRoot`, such as
// "rsync: [sender] send_files failed to open "/run/x/source/a/b": Permission denied (13)".
struct Fault {
    std::string relativePath; // below sourceRoot, with slashes
    bool directory = false;
};
std::optional<Fault> parseFault(std::string_view line, std::string_view sourceRoot);

} // namespace Velmora::Daemon::Copy::RsyncOutput
