#include "files/TreeWalker.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace Velmora::Daemon::Files {

namespace {

constexpr size_t BatchBytes = 64 * 1024;

bool isDotOrDotDot(const char* name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

PathRules::Match better(const PathRules::Match& a, const PathRules::Match& b)
{
    return b.priority < a.priority ? b : a;
}

// An error of the drive itself, not of the folder: the sums can no longer be trusted.
bool isDriveFault(int error)
{
    return error == EIO || error == ENXIO || error == ENODEV || error == EUCLEAN;
}

} // namespace

TreeWalker::TreeWalker(const PathRules& rules, const std::atomic_bool& stop)
    : m_rules(rules)
    , m_stop(stop)
    , m_buffer(BatchBytes)
{
}

uint64_t TreeWalker::usedEntries(int directory)
{
    struct statvfs info {};
    if (::fstatvfs(directory, &info) != 0 || info.f_files == 0 || info.f_ffree > info.f_files)
        return 0;
    return info.f_files - info.f_ffree;
}

bool TreeWalker::walk(int directory, std::vector<uint64_t>& sums)
{
    struct stat top {};
    if (::fstat(directory, &top) != 0)
        return true;
    m_device = top.st_dev;
    m_linked.clear();
    if (m_frames.empty())
        m_frames.emplace_back();
    Frame& root = m_frames[0];
    root.fd = directory;
    root.ruleNode = m_rules.root();
    root.inherited = m_rules.pathMatch(root.ruleNode);
    m_depth = 1;
    if (!readFolder(0, sums)) {
        closeFrames(1);
        return false;
    }
    while (m_depth > 0) {
        const size_t depth = m_depth - 1;
        Frame& frame = m_frames[depth];
        if (frame.next >= frame.subfolders.size()) {
            if (depth > 0)
                ::close(frame.fd);
            frame.fd = -1;
            --m_depth;
            continue;
        }
        if (enterNext(depth) && !readFolder(m_depth - 1, sums)) {
            closeFrames(1);
            return false;
        }
    }
    return true;
}

bool TreeWalker::enterNext(size_t depth)
{
    Frame& parent = m_frames[depth];
    const char* name = parent.names.c_str() + parent.subfolders[parent.next++].second;

    const int fd = ::openat(parent.fd, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        // A folder that vanished since it was listed, or was swapped for a link, is simply gone.
        if (errno != ENOENT && errno != ELOOP && errno != ENOTDIR)
            ++m_counters.refusedFolders;
        m_counters.failedFolders += isDriveFault(errno);
        return false;
    }
    struct stat info {};
    if (::fstat(fd, &info) != 0 || info.st_dev != m_device) {
        ::close(fd);
        return false;
    }
    const int node = m_rules.child(parent.ruleNode, name);
    const PathRules::Match inherited = better(parent.inherited, m_rules.pathMatch(node));
    if (m_depth == m_frames.size())
        m_frames.emplace_back();
    Frame& child = m_frames[m_depth++];
    child.fd = fd;
    child.ruleNode = m_rules.hasChildren(node) ? node : PathRules::NoNode;
    child.inherited = inherited;
    return true;
}

bool TreeWalker::readFolder(size_t depth, std::vector<uint64_t>& sums)
{
    Frame& frame = m_frames[depth];
    frame.names.clear();
    frame.subfolders.clear();
    frame.next = 0;
    for (;;) {
        if (m_stop.load(std::memory_order_relaxed))
            return false;
        const ssize_t bytes = ::getdents64(frame.fd, m_buffer.data(), m_buffer.size());
        if (bytes <= 0) {
            if (bytes < 0 && errno != ENOENT)
                ++m_counters.refusedFolders;
            m_counters.failedFolders += bytes < 0 && isDriveFault(errno);
            // Subfolders too are entered in inode order, for the same reason as files are read.
            std::sort(frame.subfolders.begin(), frame.subfolders.end());
            return true;
        }
        // Files are stat'ed in inode order: on a cold cache the inode table is then read
        // front to back instead of in the hash order the folder hands out its names in.
        m_files.clear();
        for (ssize_t offset = 0; offset < bytes;) {
            const auto* entry = reinterpret_cast<const dirent64*>(m_buffer.data() + offset);
            offset += entry->d_reclen;
            const char* name = entry->d_name;
            if (isDotOrDotDot(name))
                continue;
            ++m_counters.entries;
            if (entry->d_type == DT_DIR)
                addSubfolder(frame, entry->d_ino, name);
            else if (entry->d_type == DT_REG || entry->d_type == DT_UNKNOWN)
                m_files.push_back({entry->d_ino, name});
        }
        std::sort(m_files.begin(), m_files.end(), [](const FileEntry& a, const FileEntry& b) { return a.inode < b.inode; });
        for (const FileEntry& file : m_files) {
            struct stat info {};
            if (::fstatat(frame.fd, file.name, &info, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            if (S_ISDIR(info.st_mode)) {
                addSubfolder(frame, info.st_ino, file.name);
                continue;
            }
            if (!S_ISREG(info.st_mode) || (info.st_nlink > 1 && !m_linked.insert(info.st_ino).second))
                continue;
            const PathRules::Match match = better(frame.inherited, m_rules.pathMatch(m_rules.child(frame.ruleNode, file.name)));
            sums[size_t(m_rules.bucketOf(file.name, match))] += uint64_t(info.st_size);
        }
        reportProgress();
    }
}

void TreeWalker::setProgress(std::chrono::milliseconds interval, uint64_t expectedEntries, Progress progress)
{
    m_progressInterval = interval;
    m_expectedEntries = expectedEntries;
    m_progress = std::move(progress);
    m_lastReport = std::chrono::steady_clock::now();
}

void TreeWalker::reportProgress()
{
    if (!m_progress)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now - m_lastReport < m_progressInterval)
        return;
    m_lastReport = now;
    // The count of used inodes is an estimate: the last stretch is told by the final answer.
    const double done = m_expectedEntries ? double(m_counters.entries) / double(m_expectedEntries) : 0.0;
    m_progress(float(std::min(done, 0.99)));
}

void TreeWalker::addSubfolder(Frame& frame, ino_t inode, const char* name)
{
    frame.subfolders.emplace_back(inode, frame.names.size());
    frame.names.append(name, std::strlen(name) + 1);
}

void TreeWalker::closeFrames(size_t from)
{
    for (size_t i = from; i < m_depth; ++i) {
        ::close(m_frames[i].fd);
        m_frames[i].fd = -1;
    }
    m_depth = 0;
}

} // namespace Velmora::Daemon::Files
