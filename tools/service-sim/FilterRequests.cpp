#include "FilterRequests.h"

#include "FilterRules.h"
#include "SteppedTask.h"

#include "logger/Logger.h"
#include "message/Message.h"

#include "FileList.pb.h"
#include "FileTypeStructure.pb.h"
#include "Migration.pb.h"

namespace Velmora::ServiceSim {

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

// Ids of the three sums of a filter calculation, as the request names them.
constexpr quint32 SystemSum = 0;
constexpr quint32 LeftOutSum = 1;
constexpr quint32 ExtensionsRule = 2;

} // namespace

QList<quint32> FilterRequests::requestTypes() const
{
    return {Message::FileListRequest, Message::MigrationFilterSystemPaths, Message::MigrationFilterTypeRequest};
}

bool FilterRequests::handle(quint32 type, const QByteArray& payload, ClientConnection* client)
{
    switch (type) {
    case Message::FileListRequest:
        return listDirectory(payload, client);
    case Message::MigrationFilterSystemPaths:
        return answerSystemPaths(payload, client);
    case Message::MigrationFilterTypeRequest:
        return calculateFilteredSize(payload, client);
    }
    return false;
}

bool FilterRequests::listDirectory(const QByteArray& payload, ClientConnection* client)
{
    Wire::FileListRequest request;
    if (!parse(payload, &request))
        return false;
    const QString path = QString::fromStdString(request.dirpath());
    Wire::FileList answer;
    answer.set_path(request.dirpath());

    // An unknown volume or directory lists as empty, as a failed directory walk does.
    const auto key = m_machine.partitionByLetter(path);
    const PartitionContent* content = key ? m_machine.findContent(key->first, key->second) : nullptr;
    const FileTree::Node* directory = content
        ? content->files.find(path.split(QLatin1Char('\\'), Qt::SkipEmptyParts).mid(1)) : nullptr;
    if (directory && directory->directory) {
        for (const FileTree::Node& child : directory->children) {
            auto* entries = child.directory ? answer.mutable_directories() : answer.mutable_files();
            (*entries)[child.name.toStdString()] = child.size;
        }
    } else {
        Logger::warning(QString(), QStringLiteral("No directory \"%1\" to list").arg(path));
    }
    client->send(Message::FileList, answer);
    return true;
}

bool FilterRequests::answerSystemPaths(const QByteArray& payload, ClientConnection* client)
{
    Wire::MigrationFilterSystemPaths answer;
    if (!parse(payload, &answer))
        return false;
    if (!m_machine.partition(answer.driveid(), answer.partitionid())) {
        answer.set_code(Wire::NOT_FOUND);
    } else {
        answer.set_code(Wire::SUCCESS);
        answer.clear_systempaths();
        answer.clear_systemignoredpaths();
        for (const QString& path : m_machine.systemPaths(answer.driveid(), answer.partitionid()))
            answer.add_systempaths(path.toStdString());
        for (const QString& path : m_machine.systemIgnoredPaths(answer.driveid(), answer.partitionid()))
            answer.add_systemignoredpaths(path.toStdString());
    }
    client->send(Message::MigrationFilterSystemPaths, answer);
    return true;
}

bool FilterRequests::calculateFilteredSize(const QByteArray& payload, ClientConnection* client)
{
    Wire::FileTypeStructureRequest request;
    if (!parse(payload, &request))
        return false;
    if (request.action() == Wire::FileTypeStructureRequest::Stop) {
        stopCalculations();
        return true;
    }
    const int partitionId = request.partitionid();
    const Machine::PartitionInfo* partition = partitionId < 0 ? nullptr
        : m_machine.partition(request.driveid(), quint32(partitionId));
    if (!partition) {
        Wire::FileTypeStructure answer;
        answer.set_code(Wire::NOT_FOUND);
        answer.set_driveid(request.driveid());
        answer.set_partitionid(partitionId);
        client->send(Message::MigrationFilterTypeResponse, answer);
        return true;
    }

    const QList<QPair<int, quint64>> files = sortFiles(request, *partition);
    const quint32 driveId = request.driveid();
    if (m_calculations.value(partitionId))
        m_calculations.value(partitionId)->stop();
    QPointer<ClientConnection> target(client);
    auto* task = new SteppedTask(m_timings.filterSteps, m_timings.scanStepMs, [target, files, driveId, partitionId](int step, int steps) {
        if (target && target->isOpen())
            target->send(Message::MigrationFilterTypeResponse, sizesAfter(files, step, steps, driveId, partitionId));
    }, this);
    m_calculations.insert(partitionId, task);
    task->start();
    return true;
}

QList<QPair<int, quint64>> FilterRequests::sortFiles(const Wire::FileTypeStructureRequest& request,
    const Machine::PartitionInfo& partition) const
{
    QStringList systemPaths;
    QStringList leftOutPaths;
    QStringList extensions;
    for (const auto& type : request.filetypes()) {
        const QStringList paths = FilterRules::splitList(QString::fromStdString(type.paths()));
        if (type.id() == SystemSum)
            systemPaths << paths;
        else if (type.id() == LeftOutSum)
            leftOutPaths << paths;
        if (type.id() == ExtensionsRule)
            extensions << FilterRules::splitList(QString::fromStdString(type.extensions()));
    }
    const FilterRules rules(systemPaths, leftOutPaths, extensions);
    const QString letter = normalizedLetter(QString::fromStdString(partition.letter()));

    QList<QPair<int, quint64>> files;
    const PartitionContent* content = m_machine.findContent(request.driveid(), partition.id());
    if (content && !content->files.isEmpty()) {
        content->files.forEachFile([&](const QString& path, quint64 size) {
            files.append({rules.classify(letter + QLatin1Char('\\') + path), size});
        });
    } else if (partition.used() > 0) {
        files.append({FilterRules::Kept, partition.used()});
    }
    return files;
}

Wire::FileTypeStructure FilterRequests::sizesAfter(const QList<QPair<int, quint64>>& files, int step, int steps,
    quint32 driveId, int partitionId)
{
    quint64 sums[3] = {0, 0, 0};
    const int walked = files.size() * step / steps;
    for (int i = 0; i < walked; ++i)
        sums[files.at(i).first] += files.at(i).second;
    Wire::FileTypeStructure answer;
    answer.set_code(step == steps ? Wire::SUCCESS : Wire::IN_PROGRESS);
    answer.set_driveid(driveId);
    answer.set_partitionid(partitionId);
    answer.set_progress(float(step) / float(steps));
    answer.set_finished(step == steps);
    for (quint32 id : {SystemSum, LeftOutSum, ExtensionsRule}) {
        auto* sum = answer.add_filetypes();
        sum->set_id(id);
        sum->set_size(sums[id]);
    }
    return answer;
}

void FilterRequests::stopCalculations()
{
    for (const QPointer<SteppedTask>& task : qAsConst(m_calculations)) {
        if (task)
            task->stop();
    }
    m_calculations.clear();
    Logger::info(QString(), QStringLiteral("Filter calculations stopped"));
}

bool FilterRequests::fail(quint32 type, const QByteArray& payload, int code, ClientConnection* client)
{
    const auto errorCode = static_cast<Wire::Code>(code);
    if (type == Message::MigrationFilterSystemPaths) {
        Wire::MigrationFilterSystemPaths answer;
        if (!parse(payload, &answer))
            return false;
        answer.set_code(errorCode);
        client->send(Message::MigrationFilterSystemPaths, answer);
        return true;
    }
    if (type == Message::MigrationFilterTypeRequest) {
        Wire::FileTypeStructureRequest request;
        if (!parse(payload, &request))
            return false;
        Wire::FileTypeStructure answer;
        answer.set_code(errorCode);
        answer.set_driveid(request.driveid());
        answer.set_partitionid(request.partitionid());
        client->send(Message::MigrationFilterTypeResponse, answer);
        return true;
    }
    // A listing carries no code: a directory that cannot be read lists as empty.
    Wire::FileListRequest request;
    if (!parse(payload, &request))
        return false;
    Wire::FileList answer;
    answer.set_path(request.dirpath());
    client->send(Message::FileList, answer);
    return true;
}

} // namespace Velmora::ServiceSim
