#pragma once

#include <QByteArray>
#include <QString>

namespace Velmora::Daemon::Smart {

// Reads a small file of the kernel or the system (sysfs, procfs, /etc) in one go, with a bound:
// procfs files report size 0, so the size cannot be asked first. Empty when missing or unreadable.
QByteArray readFactFile(const QString& path, qint64 maxBytes = 64 * 1024);

// The same, as trimmed text: sysfs values end in a line feed, DMI strings often in blanks.
QString readFactText(const QString& path);

// The folder that stands for "/" as a prefix for absolute paths: empty for the live system.
QString rootPrefix(const QString& root);

} // namespace Velmora::Daemon::Smart
