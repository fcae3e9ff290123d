#include "support/FakeService.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

using Velmora::Message::FrameReader;

FakeService::FakeService(const QString& serverName, QObject* parent)
    : QObject(parent)
    , m_serverName(serverName)
{
    connect(&m_server, &QLocalServer::newConnection, this, &FakeService::onNewConnection);
}

FakeService::~FakeService()
{
    if (m_client)
        m_client->abort();
    m_server.close();
}

bool FakeService::listen()
{
    QLocalServer::removeServer(m_serverName);
    return m_server.listen(m_serverName);
}

bool FakeService::waitForClient(int timeoutMs)
{
    if (hasClient())
        return true;
    QSignalSpy spy(this, &FakeService::clientConnected);
    return spy.wait(timeoutMs);
}

bool FakeService::hasClient() const
{
    return m_client && m_client->state() == QLocalSocket::ConnectedState;
}

void FakeService::sendRaw(const QByteArray& bytes)
{
    if (!hasClient())
        return;
    m_client->write(bytes);
    m_client->flush();
    m_client->waitForBytesWritten(1000);
}

void FakeService::disconnectClient()
{
    if (m_client)
        m_client->disconnectFromServer();
}

bool FakeService::waitForFrames(int count, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (m_frames.size() < count && timer.elapsed() < timeoutMs)
        QTest::qWait(5);
    return m_frames.size() >= count;
}

void FakeService::onNewConnection()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        if (m_client) {
            m_client->abort();
            m_client->deleteLater();
        }
        m_client = socket;
        connect(socket, &QLocalSocket::readyRead, this, &FakeService::onReadyRead);
        emit clientConnected();
    }
}

void FakeService::onReadyRead()
{
    auto* socket = qobject_cast<QLocalSocket*>(sender());
    const QByteArray bytes = socket->readAll();
    m_received.append(bytes);
    m_reader.append(bytes);
    FrameReader::Frame frame;
    while (m_reader.next(frame))
        m_frames.append(frame);
}
