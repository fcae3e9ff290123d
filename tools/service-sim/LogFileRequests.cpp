#include "LogFileRequests.h"

#include "logger/Logger.h"
#include "message/Message.h"

#include "CopyLogFiles.pb.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Velmora::ServiceSim {

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

const char* const LogFileRequests::CopyBaseName = "KestravinService";

QList<quint32> LogFileRequests::requestTypes() const
{
    return {Message::CopyLogFilesRequest};
}

bool LogFileRequests::handle(quint32, const QByteArray& payload, ClientConnection* client)
{
    Wire::CopyLogFilesRequest request;
    if (!parse(payload, &request))
        return false;
    const QString destination = QString::fromStdString(request.destinationdirectory());
    Wire::CopyLogFilesResponse answer;
    answer.set_destinationdirectory(request.destinationdirectory());
    answer.set_logfilebasename(CopyBaseName);

    if (destination.isEmpty() || !QFileInfo(destination).isDir()) {
        Logger::error(QString(), QStringLiteral("Log files not copied: no directory \"%1\"").arg(destination));
        answer.set_code(Wire::NOT_FOUND);
        client->send(Message::CopyLogFilesResponse, answer);
        return true;
    }

    // The live log and its rotated predecessors; the copies keep their suffixes.
    const QString baseName = Logger::logFileBaseName();
    const QDir logDirectory(Logger::logDirectory());
    quint32 copied = 0;
    bool denied = false;
    for (const QFileInfo& log : logDirectory.entryInfoList({baseName + QLatin1Char('*')}, QDir::Files, QDir::Name)) {
        const QString target = QDir(destination).filePath(QLatin1String(CopyBaseName) + log.fileName().mid(baseName.size()));
        QFile::remove(target);
        if (QFile::copy(log.absoluteFilePath(), target))
            ++copied;
        else
            denied = true;
    }
    answer.set_code(denied && copied == 0 ? Wire::ACCESS_DENIED : Wire::SUCCESS);
    answer.set_filescopied(copied);
    Logger::info(QString(), QStringLiteral("%1 log files copied to %2").arg(copied).arg(destination));
    client->send(Message::CopyLogFilesResponse, answer);
    return true;
}

bool LogFileRequests::fail(quint32, const QByteArray& payload, int code, ClientConnection* client)
{
    Wire::CopyLogFilesRequest request;
    if (!parse(payload, &request))
        return false;
    Wire::CopyLogFilesResponse answer;
    answer.set_code(static_cast<Wire::Code>(code));
    answer.set_destinationdirectory(request.destinationdirectory());
    client->send(Message::CopyLogFilesResponse, answer);
    return true;
}

} // namespace Velmora::ServiceSim
