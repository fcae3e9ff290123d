#include "boot/MountStack.h"

#include "boot/BootLog.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace Velmora::Daemon::Boot {

namespace {

QString errnoText()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

// A file system still busy a moment after the tools ended (a flush, udev) is given this long.
constexpr int UnmountAttempts = 20;
constexpr std::chrono::milliseconds UnmountPause(100);

} // namespace

MountStack::MountStack(QString folder)
    : m_folder(std::move(folder))
{
}

std::unique_ptr<MountStack> MountStack::create(const QString& parent, QString* error)
{
    QByteArray pattern = (parent + QStringLiteral("/boot-XXXXXX")).toLocal8Bit();
    if (!::mkdtemp(pattern.data())) {
        *error = QStringLiteral("cannot make a folder under %1: %2").arg(parent, errnoText());
        return nullptr;
    }
    std::unique_ptr<MountStack> stack(new MountStack(QString::fromLocal8Bit(pattern)));
    const QByteArray rootPath = stack->rootPath().toLocal8Bit();
    if (::chmod(pattern.constData(), 0700) != 0 || ::mkdir(rootPath.constData(), 0700) != 0) {
        *error = QStringLiteral("cannot prepare %1: %2").arg(stack->m_folder, errnoText());
        return nullptr; // the destructor removes what was made
    }
    if (::mount(pattern.constData(), pattern.constData(), nullptr, MS_BIND, nullptr) != 0) {
        *error = QStringLiteral("cannot bind %1 onto itself: %2").arg(stack->m_folder, errnoText());
        return nullptr;
    }
    stack->m_mounted << stack->m_folder;
    if (::mount(nullptr, pattern.constData(), nullptr, MS_PRIVATE, nullptr) != 0) {
        *error = QStringLiteral("cannot make %1 a private mount: %2").arg(stack->m_folder, errnoText());
        return nullptr;
    }
    return stack;
}

MountStack::~MountStack()
{
    release();
}

bool MountStack::mountRoot(const QString& device, const QString& fileSystem, QString* error)
{
    const QByteArray target = rootPath().toLocal8Bit();
    if (::mount(device.toLocal8Bit().constData(), target.constData(), fileSystem.toLatin1().constData(), MS_NOSUID, nullptr) != 0) {
        *error = QStringLiteral("cannot mount %1 (%2) on %3: %4").arg(device, fileSystem, rootPath(), errnoText());
        return false;
    }
    m_mounted << rootPath();
    m_root = UniqueFd(::open(target.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!m_root.valid()) {
        *error = QStringLiteral("cannot open the mounted root %1: %2").arg(rootPath(), errnoText());
        return false;
    }
    return true;
}

bool MountStack::mountInside(const QString& device, const QString& fileSystem, const QString& relative, QString* error)
{
    return mountAt(device, fileSystem, MS_NOSUID, relative, error);
}

bool MountStack::bindInside(const QString& hostFolder, const QString& relative, QString* error)
{
    return mountAt(hostFolder, QString(), MS_BIND, relative, error);
}

bool MountStack::mountAt(const QString& source, const QString& fileSystem, unsigned long flags, const QString& relative, QString* error)
{
    const UniqueFd target = openBeneath(m_root.get(), relative, O_PATH | O_DIRECTORY);
    const QString path = rootPath() + QLatin1Char('/') + relative;
    if (!target.valid()) {
        *error = QStringLiteral("%1 is not a folder reached without links: %2").arg(path, errnoText());
        return false;
    }
    // Mounting through the descriptor mounts on the folder that was checked, not on whatever the
    // path might lead to by now.
    const QByteArray through = "/proc/self/fd/" + QByteArray::number(target.get());
    const QByteArray type = fileSystem.toLatin1();
    if (::mount(source.toLocal8Bit().constData(), through.constData(), type.isEmpty() ? nullptr : type.constData(), flags, nullptr) != 0) {
        *error = QStringLiteral("cannot mount %1 on %2: %3").arg(source, path, errnoText());
        return false;
    }
    m_mounted << path;
    return true;
}

bool MountStack::release()
{
    if (m_released)
        return true;
    m_released = true;
    m_root = UniqueFd();
    bool clean = true;
    while (!m_mounted.isEmpty()) {
        const QString path = m_mounted.takeLast();
        const QByteArray target = path.toLocal8Bit();
        bool done = false;
        for (int attempt = 0; attempt < UnmountAttempts && !done; ++attempt) {
            done = ::umount2(target.constData(), UMOUNT_NOFOLLOW) == 0;
            if (!done && errno != EBUSY)
                break;
            if (!done)
                std::this_thread::sleep_for(UnmountPause);
        }
        if (done) {
            qCInfo(lcBoot).noquote() << "Unmounted" << path;
            continue;
        }
        clean = false;
        qCWarning(lcBoot).noquote() << "Cannot unmount" << path << ":" << errnoText() << "- detaching it";
        if (::umount2(target.constData(), MNT_DETACH | UMOUNT_NOFOLLOW) != 0)
            qCCritical(lcBoot).noquote() << "Cannot detach" << path << ":" << errnoText();
    }
    const QByteArray root = rootPath().toLocal8Bit();
    const QByteArray folder = m_folder.toLocal8Bit();
    if ((::rmdir(root.constData()) != 0 && errno != ENOENT) || ::rmdir(folder.constData()) != 0) {
        clean = false;
        qCWarning(lcBoot).noquote() << "Cannot remove" << m_folder << ":" << errnoText();
    }
    return clean;
}

} // namespace Velmora::Daemon::Boot
