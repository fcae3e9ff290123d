#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace Velmora::Daemon::Sysfs {

// The whole content of a small kernel file (sysfs attribute, /proc file); nullopt when it cannot
// be read, with errno left as the failed call set it.
std::optional<QByteArray> read(const QString& path);
// The attribute as trimmed text; empty when unreadable.
QString text(const QString& path);
std::optional<quint64> number(const QString& path);
bool exists(const QString& path);
// Names in a directory, without . and ..; empty when unreadable.
QStringList entries(const QString& directory);

} // namespace Velmora::Daemon::Sysfs
