#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Velmora::Daemon::Copy::RsyncOutput {

// An error line that names a file or folder of the copied tree below `sourceRoot`, such as
// "rsync: [sender] send_files failed to open "/run/x/source/a/b": Permission denied (13)".
struct Fault {
    std::string relativePath; // below sourceRoot, with slashes
    bool directory = false;
};
std::optional<Fault> parseFault(std::string_view line, std::string_view sourceRoot);

} // namespace Velmora::Daemon::Copy::RsyncOutput
