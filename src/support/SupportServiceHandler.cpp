#include "support/SupportServiceHandler.h"

#include "logger/Logger.h"
#include "message/Payload.h"

#include "CopyLogFiles.pb.h"

namespace Velmora::Support {

using Velmora::Message::Message;

SupportServiceHandler::SupportServiceHandler(QObject* parent)
    : Handler(parent)
{
    setName(QString::fromLatin1(metaObject()->className()));
    setMessageTypes({Message::CopyLogFilesResponse});
}

void SupportServiceHandler::clientConnected()
{
}

void SupportServiceHandler::copyLogFiles(QString destinationDirectory)
{
    Velmora::Message::CopyLogFilesRequest request;
    request.set_destinationdirectory(destinationDirectory.toStdString());
    Logger::debug(QString(), QStringLiteral("Sending request to service log file to: %1").arg(destinationDirectory));
    emit sendMessage(Message::CopyLogFilesRequest, Velmora::Message::toPayload(request));
}

void SupportServiceHandler::handleMessage(Velmora::Message::Message::MessageType type, QByteArray payload)
{
    if (type != Message::CopyLogFilesResponse) {
        Logger::error(QString(), QStringLiteral("Unexpected message type: %1.").arg(Message::typeName(type)));
        return;
    }
    Velmora::Message::CopyLogFilesResponse response;
    if (!response.ParseFromArray(payload.constData(), payload.size())) {
        Logger::error(QString(), QStringLiteral("Cannot copy service log files. Message parse failed."));
        emit serviceLogFilesCopied(0, QString());
        return;
    }
    if (response.code() != Velmora::Message::SUCCESS) {
        Logger::error(QString(), QStringLiteral("Cannot copy service log files. Error raised by service."));
        emit serviceLogFilesCopied(0, QString());
        return;
    }
    Logger::info(QString(), QStringLiteral("Service log files were copied"));
    emit serviceLogFilesCopied(response.filescopied(), QString::fromStdString(response.logfilebasename()));
}

} // namespace Velmora::Support
