#include "boot/GrubInstaller.h"

#include "boot/BootLog.h"
#include "boot/BootabilityCode.h"
#include "boot/RootedFiles.h"
#include "boot/ToolRun.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <fcntl.h>

namespace Velmora::Daemon::Boot {

namespace {

using namespace std::chrono_literals;

// grub-install copies a few megabytes; the menu runs a probe per kernel. Generous limits that still
// end a hung tool.
constexpr std::chrono::seconds InstallLimit = 300s;
constexpr std::chrono::seconds MenuLimit = 300s;
constexpr std::chrono::seconds EntryLimit = 60s;
// A menu of many kernels is some tens of kilobytes.
constexpr qint64 MenuSizeLimit = 4 * 1024 * 1024;

const QString Chroot = QStringLiteral("/usr/sbin/chroot");

// The first of `paths` that the system has, as it would see it; empty when none.
QString firstInTree(int root, const QStringList& paths)
{
    for (const QString& path : paths) {
        if (existsInTree(root, path))
            return QLatin1Char('/') + path;
    }
    return {};
}

int codeOf(ToolRun::Outcome outcome, int failure)
{
    switch (outcome) {
    case ToolRun::Outcome::Succeeded: return Success;
    case ToolRun::Outcome::Stopped: return Canceled;
    default: return failure;
    }
}

int inChroot(const GrubJob& job, const QStringList& command, std::chrono::seconds limit, int failure, const std::atomic_bool& stop)
{
    return codeOf(ToolRun::run(Chroot, QStringList(job.rootPath) + command, limit, stop), failure);
}

// The kernel's number of a partition device, which the firmware's entry names.
QString partitionNumber(const QString& device)
{
    QFile number(QStringLiteral("/sys/class/block/%1/partition").arg(QFileInfo(device).fileName()));
    return number.open(QIODevice::ReadOnly) ? QString::fromLatin1(number.readAll().trimmed()) : QString();
}

QString grubTarget(BootStyle style)
{
    return style == BootStyle::Uefi ? QStringLiteral("x86_64-efi") : QStringLiteral("i386-pc");
}

} // namespace

std::optional<GrubTools> findGrub(const GrubJob& job)
{
    const QString target = grubTarget(job.style);
    GrubTools tools;
    tools.installer = firstInTree(job.root, {QStringLiteral("usr/sbin/grub-install"), QStringLiteral("usr/sbin/grub2-install")});
    const QString modules = firstInTree(job.root, {QStringLiteral("usr/lib/grub/") + target, QStringLiteral("usr/lib/grub2/") + target});
    // Debian's update-grub is grub-mkconfig with the menu's path, plus whatever the distribution adds.
    const QString updater = firstInTree(job.root, {QStringLiteral("usr/sbin/update-grub")});
    const QString mkconfig = firstInTree(job.root, {QStringLiteral("usr/sbin/grub-mkconfig")});
    const QString mkconfig2 = firstInTree(job.root, {QStringLiteral("usr/sbin/grub2-mkconfig")});
    if (!updater.isEmpty())
        tools.menuCommand = QStringList{updater};
    else if (!mkconfig.isEmpty())
        tools.menuCommand = QStringList{mkconfig, QStringLiteral("-o"), QStringLiteral("/boot/grub/grub.cfg")};
    else if (!mkconfig2.isEmpty())
        tools.menuCommand = QStringList{mkconfig2, QStringLiteral("-o"), QStringLiteral("/boot/grub2/grub.cfg")};
    if (tools.installer.isEmpty() || modules.isEmpty() || tools.menuCommand.isEmpty()) {
        qCWarning(lcBoot).noquote() << QStringLiteral("The new system has no GRUB for %1: grub-install %2, its modules %3, "
                                                     "update-grub or grub-mkconfig %4")
                                           .arg(target, tools.installer.isEmpty() ? "missing" : "present",
                                               modules.isEmpty() ? "missing" : "present",
                                               tools.menuCommand.isEmpty() ? "missing" : "present");
        return std::nullopt;
    }
    return tools;
}

int installGrub(const GrubJob& job, const GrubTools& tools, const std::atomic_bool& stop)
{
    const bool uefi = job.style == BootStyle::Uefi;
    QStringList install{tools.installer, QStringLiteral("--target=") + grubTarget(job.style)};
    if (uefi)
        install << QStringLiteral("--efi-directory=") + job.efiDirectory << QStringLiteral("--bootloader-id=") + job.bootloaderId
                << QStringLiteral("--no-nvram");
    else
        install << job.disk;
    int code = inChroot(job, install, InstallLimit, GrubInstallFailed, stop);
    if (code == Success && uefi && !job.machineIsUefi) {
        install.removeLast(); // --no-nvram: --removable leaves the entries alone by itself
        install << QStringLiteral("--removable");
        code = inChroot(job, install, InstallLimit, GrubInstallFailed, stop);
    }
    return code == Success ? inChroot(job, tools.menuCommand, MenuLimit, GrubConfigFailed, stop) : code;
}

int checkMenuRoot(const GrubJob& job, const QString& osPartition)
{
    const QByteArray byPath = "root=" + osPartition.toLocal8Bit();
    for (const char* folder : {"boot/grub", "boot/grub2"}) {
        const UniqueFd directory = openBeneath(job.root, QString::fromLatin1(folder), O_RDONLY | O_DIRECTORY);
        const std::optional<QByteArray> menu = directory.valid() ? readFileAt(directory.get(), "grub.cfg", MenuSizeLimit)
                                                                 : std::nullopt;
        for (int at = menu ? menu->indexOf(byPath) : -1; at >= 0; at = menu->indexOf(byPath, at + 1)) {
            // root=/dev/sdb2 but not root=/dev/sdb22
            const int end = at + byPath.size();
            if (end == menu->size() || QByteArrayLiteral(" \t\n\"'").contains(menu->at(end))) {
                qCWarning(lcBoot).noquote() << QStringLiteral("GRUB's menu /%1/grub.cfg starts the new system by its device "
                                                              "path on this machine (%2), not by its UUID: is udev running?")
                                                   .arg(QString::fromLatin1(folder), QString::fromLatin1(byPath));
                return GrubMenuByDevicePath;
            }
        }
    }
    return Success;
}

int writeEfiEntry(const GrubJob& job, const QString& espDevice, const std::atomic_bool& stop)
{
    if (!job.machineIsUefi) {
        qCWarning(lcBoot) << "This machine did not start by UEFI: no boot entry can be written for the new disk;"
                             " its firmware has to find the fallback loader";
        return NotUefiHere;
    }
    const QString tool = QStandardPaths::findExecutable(QStringLiteral("efibootmgr"),
        {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/bin"), QStringLiteral("/sbin"), QStringLiteral("/bin")});
    if (tool.isEmpty()) {
        qCWarning(lcBoot) << "efibootmgr is not installed: no boot entry written for the new disk";
        return EfiToolMissing;
    }
    const QString number = partitionNumber(espDevice);
    if (number.isEmpty()) {
        qCWarning(lcBoot).noquote() << "Cannot tell the partition number of" << espDevice;
        return EfiEntryFailed;
    }
    // With Secure Boot the signed shim starts GRUB; the system installs it beside GRUB if it has it.
    const QString folder = job.efiDirectory.mid(1) + QStringLiteral("/EFI/") + job.bootloaderId;
    const QString loader = existsInTree(job.root, folder + QStringLiteral("/shimx64.efi")) ? QStringLiteral("shimx64.efi")
                                                                                           : QStringLiteral("grubx64.efi");
    const QStringList arguments{QStringLiteral("--create"), QStringLiteral("--disk"), job.disk, QStringLiteral("--part"), number,
        QStringLiteral("--label"), job.bootloaderId, QStringLiteral("--loader"),
        QStringLiteral("\\EFI\\%1\\%2").arg(job.bootloaderId, loader)};
    return codeOf(ToolRun::run(tool, arguments, EntryLimit, stop), EfiEntryFailed);
}

} // namespace Velmora::Daemon::Boot
