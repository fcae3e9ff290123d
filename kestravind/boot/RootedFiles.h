#pragma once

#include "common/UniqueFd.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Velmora::Daemon::Boot {

// The system being made bootable is content copied from a disk, not something the service trusts:
// a symbolic link in it must never lead a write, or a mount, out of it. These open paths below a
// root folder without following any link and without leaving it.

// Opens `relative` (e.g. "etc", "boot/efi") below the folder `root` with `flags`; invalid when a
// component is a link, is missing, or leads elsewhere.
UniqueFd openBeneath(int root, const QString& relative, int flags);

// Whether `path` exists in the tree of `root` as a program inside it would see it: its own links
// resolved, but never out of that tree.
bool existsInTree(int root, const QString& path);

// The content of the plain file `name` of the folder `directory`, at most `limit` bytes; nothing
// when it is missing, a link, or larger.
std::optional<QByteArray> readFileAt(int directory, const char* name, qint64 limit);

// Replaces the file `name` of `directory` with `content`: written to a new file beside it,
// flushed, given the old file's owner and mode, renamed over it, and the folder flushed, so that a
// crash leaves the old file or the new one, never half of one. False with `error` set on failure,
// the old file untouched.
bool replaceFileAt(int directory, const char* name, const QByteArray& content, QString* error);

} // namespace Velmora::Daemon::Boot
