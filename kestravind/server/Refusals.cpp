#include "Refusals.h"

#include "message/Message.h"
#include "message/Payload.h"

#include "CopyLogFiles.pb.h"
#include "DiskPerformance.pb.h"
#include "Error.pb.h"
#include "FileTypeStructure.pb.h"
#include "Migration.pb.h"
#include "SystemTrimCommand.pb.h"

namespace Velmora::Daemon {

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

// For the answers that share the request's own message.
template<typename M>
Answer echoed(quint32 type, const QByteArray& payload, Wire::Code code)
{
    M message;
    if (!message.ParseFromArray(payload.constData(), payload.size()))
        message.Clear();
    message.set_code(code);
    return {type, Wire::toPayload(message)};
}

Answer categoriesRefused(quint32 answerType, const QByteArray& payload, Wire::Code code)
{
    Wire::FileTypeStructureRequest request;
    Wire::FileTypeStructure answer;
    if (request.ParseFromArray(payload.constData(), payload.size())) {
        answer.set_driveid(request.driveid());
        answer.set_partitionid(request.partitionid());
    }
    answer.set_code(code);
    return {answerType, Wire::toPayload(answer)};
}

} // namespace

Answer errorAnswer(Wire::Code code, const QString& text)
{
    Wire::Error error;
    error.set_code(code);
    error.set_description(text.toStdString());
    return {Message::Error, Wire::toPayload(error)};
}

Answer refusalFor(quint32 requestType, const QByteArray& payload, Wire::Code code, const QString& text)
{
    switch (requestType) {
    case Message::CleanDisk:
        return echoed<Wire::CleanDisk>(Message::CleanDisk, payload, code);
    case Message::PartitionCreate:
        return echoed<Wire::PartitionCreate>(Message::PartitionCreate, payload, code);
    case Message::PartitionFormat:
        return echoed<Wire::PartitionFormat>(Message::PartitionFormat, payload, code);
    case Message::PartitionRemove:
        return echoed<Wire::PartitionRemove>(Message::PartitionRemove, payload, code);
    case Message::MigrationBootability:
        return echoed<Wire::MigrationBootability>(Message::MigrationBootability, payload, code);
    case Message::MigrationFilterSystemPaths:
        return echoed<Wire::MigrationFilterSystemPaths>(Message::MigrationFilterSystemPaths, payload, code);
    case Message::FileCopyRequest:
    case Message::FileCopyRequestCancel: {
        Wire::FileCopyReport report;
        report.set_code(code);
        return {Message::FileCopyResponse, Wire::toPayload(report)};
    }
    case Message::SystemTrimCommand: {
        Wire::SystemTrimCommand answer;
        answer.set_code(code);
        return {Message::SystemTrimCommand, Wire::toPayload(answer)};
    }
    case Message::DiskBenchmarkRequest: {
        Wire::DiskPerformanceRequest request;
        Wire::DiskPerformance answer;
        if (request.ParseFromArray(payload.constData(), payload.size()))
            answer.set_driveid(request.driveid());
        answer.set_code(code);
        return {Message::DiskBenchmarkResponse, Wire::toPayload(answer)};
    }
    case Message::FileTypeStructureReq:
        return categoriesRefused(Message::FileCat, payload, code);
    case Message::MigrationFilterTypeRequest:
        return categoriesRefused(Message::MigrationFilterTypeResponse, payload, code);
    case Message::CopyLogFilesRequest: {
        Wire::CopyLogFilesRequest request;
        Wire::CopyLogFilesResponse answer;
        if (request.ParseFromArray(payload.constData(), payload.size()))
            answer.set_destinationdirectory(request.destinationdirectory());
        answer.set_code(code);
        return {Message::CopyLogFilesResponse, Wire::toPayload(answer)};
    }
    default:
        return errorAnswer(code, text);
    }
}

} // namespace Velmora::Daemon
