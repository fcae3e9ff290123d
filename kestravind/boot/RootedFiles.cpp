#include "boot/RootedFiles.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace Velmora::Daemon::Boot {

namespace {

int openat2(int base, const QByteArray& path, int flags, unsigned long long resolve)
{
    open_how how{};
    how.flags = static_cast<unsigned long long>(flags | O_CLOEXEC);
    how.resolve = resolve;
    return static_cast<int>(::syscall(SYS_openat2, base, path.constData(), &how, sizeof how));
}

bool writeAll(int fd, const QByteArray& content)
{
    qint64 done = 0;
    while (done < content.size()) {
        const ssize_t written = ::write(fd, content.constData() + done, static_cast<size_t>(content.size() - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

QString lastError(const char* what)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno)));
}

} // namespace

UniqueFd openBeneath(int root, const QString& relative, int flags)
{
    return UniqueFd(openat2(root, relative.toLocal8Bit(), flags,
        RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS));
}

bool existsInTree(int root, const QString& path)
{
    return UniqueFd(openat2(root, path.toLocal8Bit(), O_PATH, RESOLVE_IN_ROOT | RESOLVE_NO_MAGICLINKS)).valid();
}

std::optional<QByteArray> readFileAt(int directory, const char* name, qint64 limit)
{
    const UniqueFd fd(::openat(directory, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    struct stat status{};
    if (!fd.valid() || ::fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > limit)
        return std::nullopt;
    QByteArray content;
    char buffer[16384];
    for (;;) {
        const ssize_t got = ::read(fd.get(), buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return std::nullopt;
        if (got == 0)
            return content;
        content.append(buffer, static_cast<int>(got));
        if (content.size() > limit)
            return std::nullopt;
    }
}

bool replaceFileAt(int directory, const char* name, const QByteArray& content, QString* error)
{
    struct stat old{};
    if (::fstatat(directory, name, &old, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(old.st_mode)) {
        *error = lastError("the file to replace is not a plain file");
        return false;
    }
    const QByteArray newName = QByteArray(name) + ".kestravind-new";
    // Only an earlier, interrupted run of ours leaves this name behind.
    ::unlinkat(directory, newName.constData(), 0);
    UniqueFd fd(::openat(directory, newName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!fd.valid()) {
        *error = lastError("cannot create the new file");
        return false;
    }
    const bool written = writeAll(fd.get(), content) && ::fchown(fd.get(), old.st_uid, old.st_gid) == 0
        && ::fchmod(fd.get(), old.st_mode & 07777) == 0 && ::fsync(fd.get()) == 0;
    if (!written || ::renameat(directory, newName.constData(), directory, name) != 0) {
        *error = lastError("cannot write the new file");
        ::unlinkat(directory, newName.constData(), 0);
        return false;
    }
    if (::fsync(directory) != 0) {
        *error = lastError("cannot flush the folder");
        return false;
    }
    return true;
}

} // namespace Velmora::Daemon::Boot
