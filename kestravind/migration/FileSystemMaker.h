#pragma once

#include "CommandRunner.h"

#include <optional>

namespace Velmora::Daemon::Migration {

// The command that makes `fileSystem` (as a file system names itself: ext4, xfs, vfat, ntfs,
// swap...) with `label` on `devicePath`; nothing when this system cannot make that file system.
std::optional<Command> formatCommand(const QString& fileSystem, const QString& label, const QString& devicePath);

} // namespace Velmora::Daemon::Migration
