#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Velmora::Daemon::Copy {

// A fresh folder of mode 0700 that only the service reaches, made under a directory the service
// owns, for the mount points and the filter file of one copy. It takes away, at its end, only the
// entries it was asked to make and then itself: never a recursive removal.
class PrivateFolder
{
public:
    static std::unique_ptr<PrivateFolder> make(const std::string& parent);
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const std::string& path() const { return m_path; }
    // A folder or file named `name` inside; nothing if it could not be made.
    std::optional<std::string> makeFolder(const std::string& name);
    std::optional<std::string> writeFile(const std::string& name, const std::string& content);

private:
    explicit PrivateFolder(std::string path) : m_path(std::move(path)) {}
    std::string m_path;
    std::vector<std::string> m_folders;
    std::vector<std::string> m_files;
};

// A mount that the copy made and undoes when it ends, however it ends. The mounts never allow
// set-user-id programs, devices or execution: they are read and written, never run.
class PrivateMount
{
public:
    // The file system on `device`, read-only without replaying its journal, or read-write. For a
    // read-only mount the device itself is made read-only while mounted, as a file system that
    // finds damage records it on its device even when mounted read-only.
    static std::unique_ptr<PrivateMount> ofDevice(const std::string& device, const std::string& fileSystem,
        const std::string& target, bool readOnly);
    // What is mounted at `mountPoint` now, seen read-only at `target` (without the mounts below it).
    static std::unique_ptr<PrivateMount> readOnlyView(const std::string& mountPoint, const std::string& target);

    ~PrivateMount();
    PrivateMount(const PrivateMount&) = delete;
    PrivateMount& operator=(const PrivateMount&) = delete;

    const std::string& target() const { return m_target; }

private:
    explicit PrivateMount(std::string target) : m_target(std::move(target)) {}
    void unmount();
    std::string m_target;
    std::string m_readOnlyDevice; // set read-only for the time of the mount, writable again after
};

} // namespace Velmora::Daemon::Copy
