#include "copy/PrivateMount.h"

#include "copy/CopyLog.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

namespace Velmora::Daemon::Copy {

namespace {

constexpr unsigned long Confined = MS_NOSUID | MS_NODEV | MS_NOEXEC;

bool isPlainName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

// The kernel's name of a file system, as blkid names it.
std::string kernelType(const std::string& fileSystem)
{
    if (fileSystem == "ntfs")
        return "ntfs3";
    if (fileSystem == "fat" || fileSystem == "fat16" || fileSystem == "fat32")
        return "vfat";
    return fileSystem;
}

// Reading must not write: a journal left to replay stays unreplayed on a read-only source.
std::string readOnlyOptions(const std::string& type)
{
    if (type == "ext3" || type == "ext4")
        return "noload";
    if (type == "xfs")
        return "norecovery";
    if (type == "btrfs")
        return "nologreplay";
    return std::string();
}

// Sets the read-only flag of a block device; false if it could not be set or was set already.
bool setDeviceReadOnly(const std::string& device, bool readOnly)
{
    const int fd = ::open(device.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    int current = 0;
    int wanted = readOnly ? 1 : 0;
    const bool changed = ::ioctl(fd, BLKROGET, &current) == 0 && current != wanted && ::ioctl(fd, BLKROSET, &wanted) == 0;
    ::close(fd);
    return changed;
}

} // namespace

std::unique_ptr<PrivateFolder> PrivateFolder::make(const std::string& parent)
{
    if (parent.empty() || parent.front() != '/') {
        qCWarning(copyLog, "The folder for private mounts must be an absolute path, not \"%s\"", parent.c_str());
        return nullptr;
    }
    if (::mkdir(parent.c_str(), 0700) != 0 && errno != EEXIST) {
        qCWarning(copyLog, "Cannot make %s: %s", parent.c_str(), std::strerror(errno));
        return nullptr;
    }
    std::string pattern = parent + (parent.back() == '/' ? "" : "/") + "copy-XXXXXX";
    if (!::mkdtemp(pattern.data())) {
        qCWarning(copyLog, "Cannot make a private folder in %s: %s", parent.c_str(), std::strerror(errno));
        return nullptr;
    }
    return std::unique_ptr<PrivateFolder>(new PrivateFolder(pattern));
}

PrivateFolder::~PrivateFolder()
{
    for (const std::string& file : m_files) {
        if (::unlink(file.c_str()) != 0)
            qCWarning(copyLog, "Cannot remove %s: %s", file.c_str(), std::strerror(errno));
    }
    for (const std::string& folder : m_folders) {
        if (::rmdir(folder.c_str()) != 0)
            qCWarning(copyLog, "Cannot remove %s: %s", folder.c_str(), std::strerror(errno));
    }
    if (::rmdir(m_path.c_str()) != 0)
        qCWarning(copyLog, "Cannot remove %s: %s", m_path.c_str(), std::strerror(errno));
}

std::optional<std::string> PrivateFolder::makeFolder(const std::string& name)
{
    if (!isPlainName(name))
        return std::nullopt;
    const std::string path = m_path + '/' + name;
    if (::mkdir(path.c_str(), 0700) != 0) {
        qCWarning(copyLog, "Cannot make %s: %s", path.c_str(), std::strerror(errno));
        return std::nullopt;
    }
    m_folders.push_back(path);
    return path;
}

std::optional<std::string> PrivateFolder::writeFile(const std::string& name, const std::string& content)
{
    if (!isPlainName(name))
        return std::nullopt;
    const std::string path = m_path + '/' + name;
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) {
        qCWarning(copyLog, "Cannot make %s: %s", path.c_str(), std::strerror(errno));
        return std::nullopt;
    }
    m_files.push_back(path);
    size_t written = 0;
    while (written < content.size()) {
        const ssize_t n = ::write(fd, content.data() + written, content.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            qCWarning(copyLog, "Cannot write %s: %s", path.c_str(), std::strerror(errno));
            ::close(fd);
            return std::nullopt;
        }
        written += size_t(n);
    }
    ::close(fd);
    return path;
}

std::unique_ptr<PrivateMount> PrivateMount::ofDevice(const std::string& device, const std::string& fileSystem,
    const std::string& target, bool readOnly)
{
    const std::string type = kernelType(fileSystem);
    const std::string options = readOnly ? readOnlyOptions(type) : std::string();
    const unsigned long flags = Confined | (readOnly ? MS_RDONLY : 0);
    const bool madeReadOnly = readOnly && setDeviceReadOnly(device, true);
    if (::mount(device.c_str(), target.c_str(), type.c_str(), flags, options.empty() ? nullptr : options.c_str()) != 0) {
        qCWarning(copyLog, "Mounting %s (%s) %s at %s failed: %s", device.c_str(), type.c_str(),
            readOnly ? "read-only" : "read-write", target.c_str(), std::strerror(errno));
        if (madeReadOnly)
            setDeviceReadOnly(device, false);
        return nullptr;
    }
    qCInfo(copyLog, "Mounted %s (%s) %s at %s", device.c_str(), type.c_str(), readOnly ? "read-only" : "read-write",
        target.c_str());
    std::unique_ptr<PrivateMount> mount(new PrivateMount(target));
    if (madeReadOnly)
        mount->m_readOnlyDevice = device;
    return mount;
}

std::unique_ptr<PrivateMount> PrivateMount::readOnlyView(const std::string& mountPoint, const std::string& target)
{
    if (::mount(mountPoint.c_str(), target.c_str(), nullptr, MS_BIND, nullptr) != 0) {
        qCWarning(copyLog, "Binding %s at %s failed: %s", mountPoint.c_str(), target.c_str(), std::strerror(errno));
        return nullptr;
    }
    std::unique_ptr<PrivateMount> mount(new PrivateMount(target));
    // A bind takes the flags of the mount it copies; only a remount of the bind makes it read-only.
    if (::mount(nullptr, target.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY | Confined, nullptr) != 0) {
        qCWarning(copyLog, "Making the view of %s at %s read-only failed: %s", mountPoint.c_str(), target.c_str(),
            std::strerror(errno));
        return nullptr; // the destructor of `mount` takes the bind away again
    }
    qCInfo(copyLog, "Mounted a read-only view of %s at %s", mountPoint.c_str(), target.c_str());
    return mount;
}

PrivateMount::~PrivateMount()
{
    unmount();
    if (!m_readOnlyDevice.empty() && !setDeviceReadOnly(m_readOnlyDevice, false))
        qCWarning(copyLog, "%s could not be made writable again", m_readOnlyDevice.c_str());
}

void PrivateMount::unmount()
{
    // Processes killed a moment ago may still hold files open for a short while.
    for (int attempt = 0; attempt < 50; ++attempt) {
        if (::umount2(m_target.c_str(), UMOUNT_NOFOLLOW) == 0) {
            qCInfo(copyLog, "Unmounted %s", m_target.c_str());
            return;
        }
        if (errno != EBUSY)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    qCWarning(copyLog, "Unmounting %s failed (%s); detaching it", m_target.c_str(), std::strerror(errno));
    if (::umount2(m_target.c_str(), MNT_DETACH | UMOUNT_NOFOLLOW) != 0)
        qCWarning(copyLog, "Detaching %s failed: %s", m_target.c_str(), std::strerror(errno));
}

} // namespace Velmora::Daemon::Copy
