#pragma once

#include "files/PathRules.h"

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

namespace Velmora::Daemon::Files {

// Sums the sizes of the regular files below a folder into the buckets of a PathRules, the way
// `du -b` counts them: apparent sizes, a file with several hard links once, symbolic links never
// followed, and nothing of another file system mounted inside.
//
// It is built for trees of millions of entries: getdents64 in large batches, one fstatat per
// file relative to the folder's descriptor, an explicit stack of open folders instead of
// recursion, and buffers that live as long as the walker, so that a file costs no allocation.
class TreeWalker
{
public:
    struct Counters {
        uint64_t entries = 0;        // every name seen, for progress
        uint64_t refusedFolders = 0; // folders that could not be opened (permissions, descriptors)
        uint64_t failedFolders = 0;  // of those, folders the drive failed to hand out: gone or broken
    };

    TreeWalker(const PathRules& rules, const std::atomic_bool& stop);

    // How far a walk has got, as a share of `expectedEntries` below 1, told at most once per
    // `interval`, between two batches of entries (the stop flag is read before each batch).
    using Progress = std::function<void(float done)>;
    void setProgress(std::chrono::milliseconds interval, uint64_t expectedEntries, Progress progress);

    // Walks the open folder `directory` (not closed here). `sums` needs a slot for every bucket
    // of the rules. False when the stop flag ended the walk.
    bool walk(int directory, std::vector<uint64_t>& sums);

    const Counters& counters() const { return m_counters; }

    // The number of entries in use on the file system of `directory`, or 0 where the file
    // system does not count them: what a progress estimate divides by.
    static uint64_t usedEntries(int directory);

private:
    struct Frame {
        int fd = -1;
        int ruleNode = PathRules::NoNode;
        PathRules::Match inherited;
        std::string names;                                   // of subfolders, each ended by '\0'
        std::vector<std::pair<ino_t, size_t>> subfolders;    // inode and offset in `names`
        size_t next = 0;
    };

    struct FileEntry {
        ino_t inode;
        const char* name; // into the batch buffer
    };

    bool readFolder(size_t depth, std::vector<uint64_t>& sums);
    static void addSubfolder(Frame& frame, ino_t inode, const char* name);
    bool enterNext(size_t depth);
    void closeFrames(size_t from);

    const PathRules& m_rules;
    const std::atomic_bool& m_stop;
    void reportProgress();

    std::chrono::milliseconds m_progressInterval {0};
    uint64_t m_expectedEntries = 0;
    Progress m_progress;
    std::chrono::steady_clock::time_point m_lastReport;
    std::vector<Frame> m_frames;
    size_t m_depth = 0;
    std::vector<char> m_buffer;
    std::vector<FileEntry> m_files;
    std::unordered_set<ino_t> m_linked;
    dev_t m_device = 0;
    Counters m_counters;
};

} // namespace Velmora::Daemon::Files
