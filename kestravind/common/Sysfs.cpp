#include "common/Sysfs.h"

#include <QDir>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Velmora::Daemon::Sysfs {

std::optional<QByteArray> read(const QString& path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    QByteArray content;
    char buffer[4096];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            const int error = errno;
            ::close(fd);
            errno = error;
            return std::nullopt;
        }
        if (got == 0)
            break;
        content.append(buffer, static_cast<int>(got));
    }
    ::close(fd);
    return content;
}

QString text(const QString& path)
{
    const std::optional<QByteArray> content = read(path);
    return content ? QString::fromUtf8(content->trimmed()) : QString();
}

std::optional<quint64> number(const QString& path)
{
    const std::optional<QByteArray> content = read(path);
    if (!content)
        return std::nullopt;
    bool ok = false;
    const quint64 value = content->trimmed().toULongLong(&ok);
    return ok ? std::optional<quint64>(value) : std::nullopt;
}

bool exists(const QString& path)
{
    return ::access(QFile::encodeName(path).constData(), F_OK) == 0;
}

QStringList entries(const QString& directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace Velmora::Daemon::Sysfs
