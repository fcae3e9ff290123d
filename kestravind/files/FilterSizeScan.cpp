#include "files/FilterSizeScan.h"

#include "files/FilesLog.h"
#include "files/PathRules.h"
#include "files/ScopedUserAccess.h"
#include "files/TreeWalker.h"
#include "files/VolumePath.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>

namespace Velmora::Daemon::Files {

namespace Wire = Velmora::Message;

namespace {

enum Sum { SystemSum = 0, LeftOutSum = 1, KeptSum = 2, SumCount = 3 };

PathRules rulesOf(const Wire::FileTypeStructureRequest& request, const std::string& mountPoint)
{
    PathRules rules(KeptSum);
    for (const auto& type : request.filetypes()) {
        if (type.id() == SystemSum || type.id() == LeftOutSum) {
            for (const std::string& path : PathRules::splitList(type.paths())) {
                const std::optional<VolumePath> below = VolumePath::locate(path, mountPoint);
                if (below)
                    rules.addPath(below->components, int(type.id()), int(type.id()));
                else
                    qCWarning(filesLog, "Filter path %s is not on the volume at %s", path.c_str(), mountPoint.c_str());
            }
        } else if (type.id() == 2) {
            for (const std::string& extension : PathRules::splitList(type.extensions()))
                rules.addExtension(extension, LeftOutSum, 0);
        }
    }
    return rules;
}

Wire::FileTypeStructure answerOf(const Wire::FileTypeStructureRequest& request, Wire::Code code)
{
    Wire::FileTypeStructure answer;
    answer.set_code(code);
    answer.set_driveid(request.driveid());
    answer.set_partitionid(request.partitionid());
    return answer;
}

void addSums(Wire::FileTypeStructure& answer, const std::vector<uint64_t>& sums)
{
    for (int id = 0; id < SumCount; ++id) {
        auto* sum = answer.add_filetypes();
        sum->set_id(uint32_t(id));
        sum->set_size(sums[size_t(id)]);
    }
}

} // namespace

Wire::FileTypeStructure FilterSizeScan::run(const Wire::FileTypeStructureRequest& request, const std::string& mountPoint,
    const PeerCredentials& peer, const std::atomic_bool& stop, const Progress& progress) const
{
    if (mountPoint.empty())
        return answerOf(request, Wire::NOT_FOUND);
    const PathRules rules = rulesOf(request, mountPoint);

    const ScopedUserAccess access(peer);
    if (!access.active())
        return answerOf(request, Wire::FAILED);
    const UniqueFd root = SafeOpen().openAbsolute(mountPoint, O_RDONLY | O_DIRECTORY);
    if (!root.valid()) {
        const bool denied = errno == EACCES || errno == EPERM;
        qCWarning(filesLog, "Filter sizes of %s refused for user %u: %s", mountPoint.c_str(), peer.uid, std::strerror(errno));
        return answerOf(request, denied ? Wire::ACCESS_DENIED : Wire::NOT_FOUND);
    }

    std::vector<uint64_t> sums(SumCount, 0);
    const uint64_t expected = TreeWalker::usedEntries(root.get());
    TreeWalker walker(rules, stop);
    if (progress) {
        walker.setProgress(m_progressInterval, expected, [&](float done) {
            Wire::FileTypeStructure report = answerOf(request, Wire::IN_PROGRESS);
            addSums(report, sums);
            report.set_progress(done);
            progress(report);
        });
    }
    if (!walker.walk(root.get(), sums))
        return answerOf(request, Wire::CANCELED);
    if (walker.counters().refusedFolders)
        qCWarning(filesLog, "Filter sizes of %s left out %llu folders that user %u cannot read", mountPoint.c_str(),
            static_cast<unsigned long long>(walker.counters().refusedFolders), peer.uid);

    Wire::FileTypeStructure answer = answerOf(request, Wire::SUCCESS);
    addSums(answer, sums);
    answer.set_progress(1.0f);
    answer.set_finished(true);
    return answer;
}

} // namespace Velmora::Daemon::Files
