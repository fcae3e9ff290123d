#pragma once

#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "system/Drive.h"
#include "system/System.h"

#include <QFile>
#include <QProcess>
#include <QTest>

// The real service as the program reaches it: the process on a socket of the test's own (loop
// devices counted as drives), and the pipe client and dispatcher wired as the program wires them.
class RealService : public QObject
{
public:
    RealService()
        : m_client(new Velmora::Communication::NamedPipeClient(this))
        , m_dispatcher(new Velmora::Communication::Dispatcher(this))
    {
        using namespace Velmora::Communication;
        connect(m_client, &NamedPipeClient::connectedToServer, m_dispatcher, &Dispatcher::clientConnected);
        connect(m_client, &NamedPipeClient::messageReceived, m_dispatcher, &Dispatcher::dispatchMessage);
        connect(m_dispatcher, &Dispatcher::sendMessageToClient, m_client, &NamedPipeClient::sendMessage);
        m_process.setProcessChannelMode(QProcess::MergedChannels);
    }
    ~RealService() override { stop(); }

    // Whether the service listens on `socket` within ten seconds.
    bool start(const QString& socket)
    {
        m_process.start(QStringLiteral(KESTRAVIND_PATH), {QStringLiteral("--socket"), socket, QStringLiteral("--include-loop")});
        m_client->setServerName(socket);
        return QTest::qWaitFor([&socket] { return QFile::exists(socket); }, 10000);
    }
    // Handlers are registered before the client connects, as the program does.
    Velmora::Communication::Dispatcher* dispatcher() const { return m_dispatcher; }
    void connectClient() { m_client->connectToServer(); }
    // Ends the service, and with it every mount it made, before the test's disks go.
    void stop()
    {
        m_process.terminate();
        m_process.waitForFinished(5000);
    }

private:
    QProcess m_process;
    Velmora::Communication::NamedPipeClient* m_client;
    Velmora::Communication::Dispatcher* m_dispatcher;
};

// The drive of the program's model that the service named after `model` (a loop device's image).
inline Velmora::System::Drive* driveWithModel(Velmora::System::System& system, const QString& model)
{
    for (int id : system.driveIds()) {
        if (system.drive(id)->model() == model)
            return system.drive(id);
    }
    return nullptr;
}
