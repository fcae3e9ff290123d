#include "boot/Bootability.h"

#include "boot/BootLog.h"
#include "boot/BootabilityCode.h"
#include "boot/DeviceTable.h"
#include "boot/GrubInstaller.h"
#include "boot/MountStack.h"
#include "boot/RootedFiles.h"

#include <QRegularExpression>

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace Velmora::Daemon::Boot {

namespace {

// A device table larger than this is not one a system wrote.
constexpr qint64 TableLimit = 1024 * 1024;

bool isBlockDevice(const QString& path)
{
    struct stat status{};
    return ::stat(path.toLocal8Bit().constData(), &status) == 0 && S_ISBLK(status.st_mode);
}

// Rewrites one table of the mounted system's /etc, handing its new text to `text` where asked; a
// missing crypttab is no fault.
int rewriteTable(int etc, const char* name, DeviceTableKind kind, const QVector<IdentityPair>& pairs, QByteArray* text)
{
    const std::optional<QByteArray> old = readFileAt(etc, name, TableLimit);
    if (!old) {
        if (kind == DeviceTableKind::Fstab) {
            qCWarning(lcBoot) << "The new system has no readable /etc/fstab";
            return NoFstab;
        }
        return Success;
    }
    const TableRewrite rewrite = rewriteDeviceTable(*old, kind, pairs);
    if (text)
        *text = rewrite.text;
    if (rewrite.changedLines == 0) {
        qCInfo(lcBoot).noquote() << "/etc/" + QString::fromLatin1(name) << "names no copied partition: left as it is";
        return Success;
    }
    QString error;
    if (!replaceFileAt(etc, name, rewrite.text, &error)) {
        qCWarning(lcBoot).noquote() << "Cannot rewrite /etc/" + QString::fromLatin1(name) << ":" << error;
        return TableWriteFailed;
    }
    qCInfo(lcBoot).noquote() << "/etc/" + QString::fromLatin1(name) << "rewritten:" << rewrite.changedLines
                             << "entries now name the new partitions";
    return Success;
}

// The system's own name for itself, which GRUB uses for its EFI folder.
QString bootloaderIdOf(int root)
{
    std::optional<QByteArray> release;
    for (const char* folder : {"usr/lib", "etc"}) {
        const UniqueFd directory = openBeneath(root, QString::fromLatin1(folder), O_RDONLY | O_DIRECTORY);
        if (directory.valid() && (release = readFileAt(directory.get(), "os-release", 64 * 1024)))
            break;
    }
    static const QRegularExpression idLine(QStringLiteral("^ID=\"?([a-z0-9._-]+)\"?\\s*$"), QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = idLine.match(QString::fromUtf8(release.value_or(QByteArray())));
    return match.hasMatch() ? match.captured(1) : QStringLiteral("grub");
}

bool isEfiFileSystem(const QString& fileSystem)
{
    return fileSystem == QLatin1String("vfat") || fileSystem == QLatin1String("msdos");
}

class MountedWork
{
public:
    MountedWork(const BootabilityTarget& target, MountStack& stack) : m_target(target), m_stack(stack) {}

    int run(const std::atomic_bool& stop)
    {
        for (const auto& pair : m_target.pairs)
            m_pairs.append({probeIdentity(pair.first), probeIdentity(pair.second)});
        int code = mountRoot();
        if (code == Success)
            code = rewriteTables();
        if (code == Success && stop)
            code = Canceled;
        if (code == Success)
            code = mountBootPartitions();
        if (code != Success)
            return code;
        GrubJob job;
        job.rootPath = m_stack.rootPath();
        job.root = m_stack.root();
        job.style = m_target.style;
        job.disk = m_target.destinationDisk;
        job.efiDirectory = m_efiDirectory;
        job.bootloaderId = bootloaderIdOf(m_stack.root());
        job.machineIsUefi = m_target.machineIsUefi;
        const std::optional<GrubTools> grub = findGrub(job);
        if (!grub)
            return NoGrub;
        code = bindMachineFolders();
        if (code == Success && stop)
            code = Canceled;
        if (code == Success)
            code = installGrub(job, *grub, stop);
        if (code == Success)
            code = checkMenuRoot(job, m_target.osPartition);
        if (code == Success && m_target.style == BootStyle::Uefi)
            code = writeEfiEntry(job, m_efiDevice, stop);
        return code;
    }

private:
    const DeviceIdentity* destination(const QString& device) const
    {
        for (const IdentityPair& pair : m_pairs) {
            if (pair.destination.devicePath == device)
                return &pair.destination;
        }
        return nullptr;
    }

    int mountRoot()
    {
        const DeviceIdentity* system = destination(m_target.osPartition);
        QString error;
        if (!system || system->fileSystem.isEmpty() || !m_stack.mountRoot(system->devicePath, system->fileSystem, &error)) {
            qCWarning(lcBoot).noquote() << "Cannot mount the new system" << m_target.osPartition << ":"
                                        << (error.isEmpty() ? QStringLiteral("no file system found") : error);
            return MountFailed;
        }
        qCInfo(lcBoot).noquote() << "Mounted the new system" << m_target.osPartition << "(" + system->fileSystem + ") at"
                                 << m_stack.rootPath();
        return Success;
    }

    int rewriteTables()
    {
        const UniqueFd etc = openBeneath(m_stack.root(), QStringLiteral("etc"), O_RDONLY | O_DIRECTORY);
        if (!etc.valid()) {
            qCWarning(lcBoot) << "The new system has no /etc folder reached without links";
            return NoFstab;
        }
        const int code = rewriteTable(etc.get(), "fstab", DeviceTableKind::Fstab, m_pairs, &m_fstab);
        return code == Success ? rewriteTable(etc.get(), "crypttab", DeviceTableKind::Crypttab, m_pairs, nullptr) : code;
    }

    // /boot and /boot/efi as the system mounts them, so that GRUB lands where the system looks.
    int mountBootPartitions()
    {
        QVector<DeviceIdentity> devices;
        for (const IdentityPair& pair : std::as_const(m_pairs))
            devices.append(pair.destination);
        QVector<DeviceMount> mounts = mountsOfDevices(m_fstab, devices);
        mounts.erase(std::remove_if(mounts.begin(), mounts.end(), [](const DeviceMount& mount) {
            const bool underBoot = mount.mountPoint == QLatin1String("/boot") || mount.mountPoint.startsWith(QLatin1String("/boot/"));
            return !underBoot || mount.mountPoint.split(QLatin1Char('/')).contains(QLatin1String(".."));
        }), mounts.end());
        std::stable_sort(mounts.begin(), mounts.end(), [](const DeviceMount& a, const DeviceMount& b) {
            return a.mountPoint.size() < b.mountPoint.size();
        });
        for (const DeviceMount& mount : std::as_const(mounts)) {
            const DeviceIdentity& device = devices[mount.device];
            const QString fileSystem = mount.fileSystem == QLatin1String("auto") ? device.fileSystem : mount.fileSystem;
            QString error;
            if (!m_stack.mountInside(device.devicePath, fileSystem, mount.mountPoint.mid(1), &error)) {
                qCWarning(lcBoot).noquote() << "Cannot mount the new system's" << mount.mountPoint << ":" << error;
                return MountFailed;
            }
            qCInfo(lcBoot).noquote() << "Mounted" << device.devicePath << "at the new system's" << mount.mountPoint;
            // The EFI partition is FAT by the firmware's rule; failing that, the one the program
            // named the boot partition.
            const bool fat = isEfiFileSystem(fileSystem);
            if (fat || (m_efiDevice.isEmpty() && device.devicePath == m_target.bootPartition)) {
                m_efiDirectory = mount.mountPoint;
                m_efiDevice = device.devicePath;
            }
        }
        if (m_target.style == BootStyle::Uefi && m_efiDirectory.isEmpty()) {
            qCWarning(lcBoot).noquote() << "The new system's /etc/fstab mounts no EFI system partition under /boot"
                                        << "(boot partition" << m_target.bootPartition << ")";
            return MountFailed;
        }
        return Success;
    }

    // The system's tools look at the machine's devices, processes and firmware through these.
    int bindMachineFolders()
    {
        for (const QString& folder : {QStringLiteral("dev"), QStringLiteral("proc"), QStringLiteral("sys")}) {
            // A copy that left these folders out gets them back empty, as the system expects.
            if (::mkdirat(m_stack.root(), folder.toLatin1().constData(), 0755) != 0 && errno != EEXIST) {
                qCWarning(lcBoot).noquote() << "Cannot make the new system's /" + folder;
                return MountFailed;
            }
            QString error;
            if (!m_stack.bindInside(QLatin1Char('/') + folder, folder, &error)) {
                qCWarning(lcBoot).noquote() << "Cannot bind /" + folder << "into the new system:" << error;
                return MountFailed;
            }
        }
        return Success;
    }

    const BootabilityTarget& m_target;
    MountStack& m_stack;
    QVector<IdentityPair> m_pairs;
    QByteArray m_fstab;
    QString m_efiDirectory;
    QString m_efiDevice;
};

} // namespace

Bootability::Bootability(BootabilityTarget target)
    : m_target(std::move(target))
{
}

Velmora::Message::MigrationBootability Bootability::run(const Velmora::Message::MigrationBootability& request,
    const std::atomic_bool& stop) const
{
    Velmora::Message::MigrationBootability answer = request;
    const int code = configure(stop);
    answer.set_code(static_cast<Velmora::Message::Code>(code));
    if (code == Success)
        qCInfo(lcBoot) << "Drive" << request.driveid() << "made bootable";
    else
        qCWarning(lcBoot) << "Drive" << request.driveid() << "not made bootable: code" << code;
    return answer;
}

int Bootability::configure(const std::atomic_bool& stop) const
{
    qCInfo(lcBoot).noquote() << QStringLiteral("Making %1 bootable by %2: system %3, boot partition %4; this machine started by %5")
                                    .arg(m_target.destinationDisk, m_target.style == BootStyle::Uefi ? "UEFI" : "BIOS",
                                        m_target.osPartition, m_target.bootPartition.isEmpty() ? "none" : m_target.bootPartition,
                                        m_target.machineIsUefi ? "UEFI" : "BIOS");
    const bool systemPaired = std::any_of(m_target.pairs.cbegin(), m_target.pairs.cend(),
        [this](const QPair<QString, QString>& pair) { return pair.second == m_target.osPartition; });
    if (!systemPaired) {
        qCWarning(lcBoot).noquote() << "The new system" << m_target.osPartition << "is not among the copied partitions";
        return InvalidRequest;
    }
    QStringList devices{m_target.destinationDisk, m_target.osPartition};
    if (!m_target.bootPartition.isEmpty())
        devices << m_target.bootPartition;
    for (const auto& pair : m_target.pairs)
        devices << pair.first << pair.second;
    for (const QString& device : std::as_const(devices)) {
        if (!isBlockDevice(device)) {
            qCWarning(lcBoot).noquote() << device << "is not a block device (any more)";
            return NotFound;
        }
    }
    if (stop)
        return Canceled;
    QString error;
    std::unique_ptr<MountStack> stack = MountStack::create(m_target.workFolder, &error);
    if (!stack) {
        qCWarning(lcBoot).noquote() << "Cannot prepare a private mount folder:" << error;
        return Failed;
    }
    const int code = MountedWork(m_target, *stack).run(stop);
    if (!stack->release()) {
        qCCritical(lcBoot) << "Not everything of the new system could be unmounted";
        return code == Success ? UnmountFailed : code;
    }
    return code;
}

} // namespace Velmora::Daemon::Boot
