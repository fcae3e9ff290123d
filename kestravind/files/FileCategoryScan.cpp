#include "files/FileCategoryScan.h"

#include "files/FilesLog.h"
#include "files/PathRules.h"
#include "files/TreeWalker.h"
#include "files/VolumePath.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <utility>

namespace Velmora::Daemon::Files {

namespace Wire = Velmora::Message;

namespace {

// The request's categories, in its order, with OTHER last unless it asked for OTHER itself.
std::vector<uint32_t> categoriesOf(const Wire::FileTypeStructureRequest& request)
{
    std::vector<uint32_t> categories;
    for (const auto& type : request.filetypes()) {
        if (std::find(categories.begin(), categories.end(), type.id()) == categories.end())
            categories.push_back(type.id());
    }
    if (std::find(categories.begin(), categories.end(), FileCategoryScan::OtherCategory) == categories.end())
        categories.push_back(FileCategoryScan::OtherCategory);
    return categories;
}

PathRules rulesOf(const Wire::FileTypeStructureRequest& request, const std::vector<uint32_t>& categories)
{
    const auto bucket = [&](uint32_t category) {
        return int(std::find(categories.begin(), categories.end(), category) - categories.begin());
    };
    PathRules rules(bucket(FileCategoryScan::OtherCategory));
    int priority = 0;
    for (const auto& type : request.filetypes()) {
        for (const std::string& name : PathRules::splitList(type.paths())) {
            // A path list names entries of the volume's top level, possibly a folder below it.
            const std::optional<VolumePath> below = VolumePath::locate("/" + name, std::string("/"));
            if (below && !below->components.empty())
                rules.addPath(below->components, bucket(type.id()), priority);
        }
        for (const std::string& extension : PathRules::splitList(type.extensions()))
            rules.addExtension(extension, bucket(type.id()), priority);
        ++priority;
    }
    return rules;
}

Wire::FileTypeStructure answerOf(const Wire::FileTypeStructureRequest& request, const std::vector<uint32_t>& categories,
    const std::vector<uint64_t>& sums)
{
    Wire::FileTypeStructure answer;
    answer.set_driveid(request.driveid());
    answer.set_partitionid(request.partitionid());
    for (size_t i = 0; i < categories.size(); ++i) {
        auto* info = answer.add_filetypes();
        info->set_id(categories[i]);
        info->set_size(sums[i]);
    }
    return answer;
}

} // namespace

Wire::FileTypeStructure FileCategoryScan::run(const Wire::FileTypeStructureRequest& request,
    const std::vector<std::string>& mountPoints, const std::atomic_bool& stop, const Progress& progress) const
{
    const std::vector<uint32_t> categories = categoriesOf(request);
    const PathRules rules = rulesOf(request, categories);
    std::vector<uint64_t> sums(categories.size(), 0);

    // Open every volume first: the progress estimate needs all their entry counts.
    const SafeOpen opener;
    std::vector<std::pair<std::string, UniqueFd>> volumes;
    std::set<dev_t> devices;
    uint64_t expected = 0;
    for (const std::string& mountPoint : mountPoints) {
        UniqueFd root = opener.openAbsolute(mountPoint, O_RDONLY | O_DIRECTORY);
        struct stat info {};
        if (!root.valid() || ::fstat(root.get(), &info) != 0) {
            qCWarning(filesLog, "Cannot open the volume at %s to scan it: %s", mountPoint.c_str(), std::strerror(errno));
            continue;
        }
        if (!devices.insert(info.st_dev).second)
            continue;
        expected += TreeWalker::usedEntries(root.get());
        volumes.emplace_back(mountPoint, std::move(root));
    }

    TreeWalker walker(rules, stop);
    if (progress) {
        walker.setProgress(m_progressInterval, expected, [&](float done) {
            Wire::FileTypeStructure report = answerOf(request, categories, sums);
            report.set_code(Wire::IN_PROGRESS);
            report.set_progress(done);
            progress(report);
        });
    }

    for (const auto& volume : volumes) {
        if (!walker.walk(volume.second.get(), sums)) {
            qCInfo(filesLog, "File category scan of drive %u stopped", request.driveid());
            Wire::FileTypeStructure gone;
            gone.set_code(Wire::NOT_FOUND);
            gone.set_driveid(request.driveid());
            gone.set_partitionid(request.partitionid());
            return gone;
        }
    }
    if (walker.counters().failedFolders) {
        qCWarning(filesLog, "File category scan of drive %u failed: the drive could not be read (%llu folders)",
            request.driveid(), static_cast<unsigned long long>(walker.counters().failedFolders));
        Wire::FileTypeStructure failed;
        failed.set_code(Wire::FAILED);
        failed.set_driveid(request.driveid());
        failed.set_partitionid(request.partitionid());
        return failed;
    }
    if (walker.counters().refusedFolders)
        qCWarning(filesLog, "File category scan of drive %u could not open %llu folders", request.driveid(),
            static_cast<unsigned long long>(walker.counters().refusedFolders));
    Wire::FileTypeStructure answer = answerOf(request, categories, sums);
    answer.set_code(Wire::SUCCESS);
    answer.set_finished(true);
    answer.set_progress(1.0f);
    return answer;
}

} // namespace Velmora::Daemon::Files
