#include "FileCategoryRequests.h"

#include "FilterRules.h"
#include "SteppedTask.h"

#include "logger/Logger.h"
#include "message/Message.h"

#include "FileTypeStructure.pb.h"

namespace Velmora::ServiceSim {

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

// What fell in no rule.
constexpr int OtherCategory = 6;

struct CategoryRule {
    int category = OtherCategory;
    QStringList paths;      // names of top-level entries of a volume
    QStringList extensions;
};

int categoryOf(const QString& path, const QList<CategoryRule>& rules)
{
    const QString topLevel = path.section(QLatin1Char('\\'), 0, 0);
    // Paths first: a picture inside the Windows directory belongs to the system.
    for (const CategoryRule& rule : rules) {
        if (rule.paths.contains(topLevel, Qt::CaseInsensitive))
            return rule.category;
    }
    for (const CategoryRule& rule : rules) {
        for (const QString& extension : rule.extensions) {
            if (path.endsWith(extension, Qt::CaseInsensitive))
                return rule.category;
        }
    }
    return OtherCategory;
}

} // namespace

QList<quint32> FileCategoryRequests::requestTypes() const
{
    return {Message::FileTypeStructureReq};
}

bool FileCategoryRequests::handle(quint32, const QByteArray& payload, ClientConnection* client)
{
    Wire::FileTypeStructureRequest request;
    if (!parse(payload, &request))
        return false;
    switch (request.action()) {
    case Wire::FileTypeStructureRequest::Start:
        if (!m_machine.drive(request.driveid()))
            reportGone(request.driveid(), request.partitionid(), client);
        else
            startScan(request, client);
        break;
    case Wire::FileTypeStructureRequest::Stop:
        // Only a running scan goes; a finished one keeps its result for later reports.
        if (m_scans.contains(request.driveid()) && !m_scans.value(request.driveid()).finished) {
            stopScan(request.driveid());
            reportGone(request.driveid(), request.partitionid(), client);
        } else {
            Logger::info(QString(), QStringLiteral("No scan of drive %1 running to stop").arg(request.driveid()));
        }
        break;
    default:
        report(request.driveid(), client);
        break;
    }
    return true;
}

QList<QPair<int, quint64>> FileCategoryRequests::walk(const Wire::FileTypeStructureRequest& request) const
{
    QList<CategoryRule> rules;
    for (const auto& type : request.filetypes()) {
        CategoryRule rule;
        rule.category = static_cast<int>(type.id());
        rule.paths = FilterRules::splitList(QString::fromStdString(type.paths()));
        rule.extensions = FilterRules::splitList(QString::fromStdString(type.extensions()));
        rules << rule;
    }
    QList<QPair<int, quint64>> files;
    const Machine::DriveInfo* drive = m_machine.drive(request.driveid());
    for (const Machine::PartitionInfo& partition : drive->partitions()) {
        // Only mounted volumes can be walked.
        if (partition.letter().empty() || (request.partitionid() >= 0 && partition.id() != quint32(request.partitionid())))
            continue;
        const PartitionContent* content = m_machine.findContent(request.driveid(), partition.id());
        if (content && !content->files.isEmpty()) {
            content->files.forEachFile([&](const QString& path, quint64 size) {
                files.append({categoryOf(path, rules), size});
            });
        } else if (partition.used() > 0) {
            files.append({OtherCategory, partition.used()});
        }
    }
    return files;
}

void FileCategoryRequests::startScan(const Wire::FileTypeStructureRequest& request, ClientConnection* client)
{
    stopScan(request.driveid());
    Scan& scan = m_scans[request.driveid()];
    scan = Scan();
    scan.files = walk(request);
    scan.partitionId = request.partitionid();
    scan.steps = m_timings.scanSteps;
    for (const auto& type : request.filetypes())
        scan.categories << type.id();
    if (!scan.categories.contains(OtherCategory))
        scan.categories << OtherCategory;
    Logger::info(QString(), QStringLiteral("Scanning drive %1: %2 files").arg(request.driveid()).arg(scan.files.size()));

    const quint32 driveId = request.driveid();
    QPointer<ClientConnection> target(client);
    scan.task = new SteppedTask(scan.steps, m_timings.scanStepMs, [this, driveId, target](int step, int steps) {
        Scan& running = m_scans[driveId];
        running.stepsDone = step;
        running.finished = step == steps;
        if (target && target->isOpen())
            report(driveId, target);
    }, this);
    scan.task->start();
}

void FileCategoryRequests::stopScan(quint32 driveId)
{
    const auto it = m_scans.find(driveId);
    if (it == m_scans.end())
        return;
    if (it->task)
        it->task->stop();
    m_scans.erase(it);
    Logger::info(QString(), QStringLiteral("Scan of drive %1 stopped").arg(driveId));
}

void FileCategoryRequests::report(quint32 driveId, ClientConnection* client) const
{
    const auto it = m_scans.constFind(driveId);
    if (it == m_scans.constEnd()) {
        reportGone(driveId, -1, client);
        return;
    }
    const Scan& scan = it.value();
    const int walked = scan.finished ? scan.files.size() : scan.files.size() * scan.stepsDone / scan.steps;
    QMap<int, quint64> sizes;
    for (int i = 0; i < walked; ++i)
        sizes[scan.files.at(i).first] += scan.files.at(i).second;

    Wire::FileTypeStructure answer;
    answer.set_code(scan.finished ? Wire::SUCCESS : Wire::IN_PROGRESS);
    answer.set_driveid(driveId);
    answer.set_partitionid(scan.partitionId);
    answer.set_finished(scan.finished);
    answer.set_progress(scan.finished ? 1.0f : float(scan.stepsDone) / float(scan.steps));
    for (quint32 category : scan.categories) {
        auto* info = answer.add_filetypes();
        info->set_id(category);
        info->set_size(sizes.value(int(category)));
    }
    client->send(Message::FileCat, answer);
}

void FileCategoryRequests::reportGone(quint32 driveId, int partitionId, ClientConnection* client) const
{
    Wire::FileTypeStructure answer;
    answer.set_code(Wire::NOT_FOUND);
    answer.set_driveid(driveId);
    answer.set_partitionid(partitionId);
    client->send(Message::FileCat, answer);
}

bool FileCategoryRequests::fail(quint32, const QByteArray& payload, int code, ClientConnection* client)
{
    Wire::FileTypeStructureRequest request;
    if (!parse(payload, &request))
        return false;
    Wire::FileTypeStructure answer;
    answer.set_code(static_cast<Wire::Code>(code));
    answer.set_driveid(request.driveid());
    answer.set_partitionid(request.partitionid());
    client->send(Message::FileCat, answer);
    return true;
}

} // namespace Velmora::ServiceSim
