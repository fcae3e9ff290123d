#include "ServiceLink.h"

#include "application/Logger.h"

#include <QElapsedTimer>
#include <QTest>

using Velmora::Message::Message;

namespace {

QElapsedTimer& linkClock()
{
    static QElapsedTimer timer;
    if (!timer.isValid())
        timer.start();
    return timer;
}

} // namespace

RecordingHandler::RecordingHandler()
{
    setName(QString::fromLatin1(metaObject()->className()));
    setMessageTypes({Message::Version, Message::Error, Message::CopyLogFilesResponse, Message::FileList,
        Message::MigrationFilterTypeResponse, Message::MigrationFilterSystemPaths, Message::FileCopyResponse,
        Message::MigrationBootability, Message::Smart, Message::SystemInfo, Message::FileCat, Message::SystemReport,
        Message::SystemTrimCommand, Message::DiskBenchmarkResponse, Message::PartitionCreate, Message::PartitionRemove,
        Message::PartitionFormat, Message::CleanDisk});
}

void RecordingHandler::clientConnected()
{
    ++connections;
}

void RecordingHandler::handleMessage(Message::MessageType type, QByteArray payload)
{
    records.append({type, payload, ServiceLink::nowMs()});
}

ServiceLink::ServiceLink(const QString& serverName)
{
    Velmora::Logger::setConsoleEnabled(false);
    client.setServerName(serverName);
    client.setServerNotFoundRetryInterval(50);
    QObject::connect(&client, &Velmora::Communication::NamedPipeClient::connectedToServer, &dispatcher,
        &Velmora::Communication::Dispatcher::clientConnected);
    QObject::connect(&client, &Velmora::Communication::NamedPipeClient::messageReceived, &dispatcher,
        &Velmora::Communication::Dispatcher::dispatchMessage);
    QObject::connect(&dispatcher, &Velmora::Communication::Dispatcher::sendMessageToClient, &client,
        &Velmora::Communication::NamedPipeClient::sendMessage);
    dispatcher.registerHandler(&handler);
    client.connectToServer();
}

qint64 ServiceLink::nowMs()
{
    return linkClock().elapsed();
}

bool ServiceLink::waitForConnection(int timeoutMs)
{
    return QTest::qWaitFor([&] { return client.isConnected() && handler.connections > 0; }, timeoutMs);
}

void ServiceLink::send(MessageType type, const google::protobuf::MessageLite& message)
{
    const std::string bytes = message.SerializeAsString();
    send(type, QByteArray(bytes.data(), static_cast<int>(bytes.size())));
}

void ServiceLink::send(MessageType type, const QByteArray& payload)
{
    handler.request(type, payload);
}

bool ServiceLink::take(MessageType type, QByteArray* payload, int timeoutMs, qint64* receivedAtMs)
{
    RecordingHandler::Record* found = nullptr;
    auto findRecord = [&] {
        for (RecordingHandler::Record& record : handler.records) {
            if (record.type == type && !record.taken) {
                found = &record;
                return true;
            }
        }
        return false;
    };
    if (!findRecord() && !(QTest::qWaitFor(findRecord, timeoutMs) && found))
        return false;
    found->taken = true;
    *payload = found->payload;
    if (receivedAtMs)
        *receivedAtMs = found->receivedAtMs;
    return true;
}

int ServiceLink::pending(MessageType type) const
{
    int count = 0;
    for (const RecordingHandler::Record& record : handler.records)
        count += record.type == type && !record.taken ? 1 : 0;
    return count;
}

int answerCode(const QByteArray& payload)
{
    // Fields go out in the order of their numbers, so a code, when it is not 0, leads the payload
    // as tag 0x08 and a varint.
    if (payload.isEmpty() || static_cast<uchar>(payload.at(0)) != 0x08)
        return 0;
    int code = 0;
    for (int i = 1, shift = 0; i < payload.size() && shift < 32; ++i, shift += 7) {
        const auto byte = static_cast<uchar>(payload.at(i));
        code |= (byte & 0x7F) << shift;
        if (!(byte & 0x80))
            return code;
    }
    return -1;
}
