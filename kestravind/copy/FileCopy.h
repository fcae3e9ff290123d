#pragma once

#include "Migration.pb.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

namespace Velmora::Daemon::Copy {

struct CopyVolume {
    std::string device;     // "/dev/sdb2", from the service's own list of partitions
    std::string fileSystem; // as blkid names it: "ext4", "xfs", "vfat", "ntfs", ...
    std::string mountPoint; // where it is mounted now, empty if nowhere; the program's letter of it
};

struct FileCopyJob {
    CopyVolume source;
    CopyVolume destination;
    Velmora::Message::MigrationFilter filter; // paths in the program's form below source.mountPoint
};

// Copies the files of one partition onto a freshly made one for a migration: owners, modes,
// times, ACLs, extended attributes, hard links, symbolic links and sparse files as they are, less
// what the filter leaves out. The source is only ever mounted read-only (or seen through a
// read-only view of its present mount), both mounts live in a private folder under
// `stateDirectory`, and both are gone again when run() returns, whatever the outcome.
//
// Interim reports carry PROGRESS with the bytes and files the destination has gained so far; the
// final one SUCCESS (with the files and folders that could not be read, if any), CANCELED on a
// stop, or FAILED. Refusals: NOT_FOUND for a partition that is not there (no device given),
// INVALID_REQUEST for devices that are not two partitions or a destination without a file system.
class FileCopy
{
public:
    struct Options {
        std::string rsync = "/usr/bin/rsync";
        std::chrono::milliseconds stallLimit = std::chrono::minutes(10);
        std::chrono::milliseconds reportInterval = std::chrono::milliseconds(500);
    };
    using ProgressHandler = std::function<void(const Velmora::Message::FileCopyReport&)>;

    explicit FileCopy(std::string stateDirectory) : FileCopy(std::move(stateDirectory), Options()) {}
    FileCopy(std::string stateDirectory, Options options);

    Velmora::Message::FileCopyReport run(const FileCopyJob& job, const std::atomic_bool& stop,
        const ProgressHandler& progress) const;

private:
    Velmora::Message::FileCopyReport copy(const FileCopyJob& job, const std::atomic_bool& stop,
        const ProgressHandler& progress) const;

    std::string m_stateDirectory;
    Options m_options;
};

} // namespace Velmora::Daemon::Copy
