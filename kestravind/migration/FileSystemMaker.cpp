#include "FileSystemMaker.h"

#include <QStandardPaths>

namespace Velmora::Daemon::Migration {

namespace {

// A file system of a whole new disk can take a while to lay out; the program's own patience for
// an answer is two minutes, and a failure it is told about beats one it has to guess.
constexpr std::chrono::milliseconds FormatTimeLimit{110000};

struct Maker {
    const char* fileSystem;
    const char* program;
    QStringList options; // before the label
    const char* labelOption;
};

const QVector<Maker>& makers()
{
    static const QVector<Maker> table{
        {"ext4", "mkfs.ext4", {QStringLiteral("-F"), QStringLiteral("-q")}, "-L"},
        {"ext3", "mkfs.ext3", {QStringLiteral("-F"), QStringLiteral("-q")}, "-L"},
        {"ext2", "mkfs.ext2", {QStringLiteral("-F"), QStringLiteral("-q")}, "-L"},
        {"xfs", "mkfs.xfs", {QStringLiteral("-f"), QStringLiteral("-q")}, "-L"},
        {"btrfs", "mkfs.btrfs", {QStringLiteral("-f"), QStringLiteral("-q")}, "-L"},
        {"vfat", "mkfs.vfat", {}, "-n"},
        {"fat32", "mkfs.vfat", {QStringLiteral("-F"), QStringLiteral("32")}, "-n"},
        // Without -Q mkntfs writes zeros over the whole partition first.
        {"ntfs", "mkntfs", {QStringLiteral("-Q"), QStringLiteral("-F")}, "-L"},
        {"swap", "mkswap", {}, "-L"},
    };
    return table;
}

} // namespace

std::optional<Command> formatCommand(const QString& fileSystem, const QString& label, const QString& devicePath)
{
    for (const Maker& maker : makers()) {
        if (fileSystem.compare(QLatin1String(maker.fileSystem), Qt::CaseInsensitive) != 0)
            continue;
        const QString program = QStandardPaths::findExecutable(QLatin1String(maker.program),
            {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/bin"), QStringLiteral("/sbin"), QStringLiteral("/bin")});
        if (program.isEmpty())
            return std::nullopt;
        QStringList arguments = maker.options;
        if (!label.isEmpty())
            arguments << QLatin1String(maker.labelOption) << label;
        arguments << devicePath;
        return Command{program, arguments, {}, FormatTimeLimit};
    }
    return std::nullopt;
}

} // namespace Velmora::Daemon::Migration
