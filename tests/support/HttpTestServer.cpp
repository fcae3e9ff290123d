#include "support/HttpTestServer.h"

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTest>

HttpTestServer::HttpTestServer(QObject* parent)
    : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &HttpTestServer::onNewConnection);
}

HttpTestServer::~HttpTestServer()
{
    // The sockets outlive our members otherwise, and their destruction reaches back into them.
    for (QTcpSocket* socket : m_server.findChildren<QTcpSocket*>())
        disconnect(socket, nullptr, this, nullptr);
}

bool HttpTestServer::listen()
{
    if (!m_server.listen(QHostAddress::LocalHost, m_port))
        return false;
    m_port = m_server.serverPort();
    return true;
}

bool HttpTestServer::restart()
{
    return listen();
}

void HttpTestServer::shutDown()
{
    m_server.close();
    const QList<QTcpSocket*> sockets = m_pending.keys();
    for (QTcpSocket* socket : sockets)
        socket->abort();
}

QUrl HttpTestServer::baseUrl() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1/kestravin/public/api/").arg(m_port));
}

bool HttpTestServer::waitForRequests(int count, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (m_requests.size() < count && timer.elapsed() < timeoutMs)
        QTest::qWait(5);
    return m_requests.size() >= count;
}

void HttpTestServer::onNewConnection()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QObject::destroyed, this, [this, socket] { m_pending.remove(socket); });
    }
}

void HttpTestServer::onReadyRead(QTcpSocket* socket)
{
    QByteArray& buffer = m_pending[socket];
    buffer.append(socket->readAll());
    for (;;) {
        const int headerEnd = buffer.indexOf("\r\n\r\n");
        if (headerEnd < 0)
            return;
        Request request;
        const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
        const QList<QByteArray> start = lines.value(0).trimmed().split(' ');
        request.method = start.value(0);
        request.target = start.value(1);
        for (int i = 1; i < lines.size(); ++i) {
            const int colon = lines.at(i).indexOf(':');
            if (colon > 0)
                request.headers.insert(lines.at(i).left(colon).trimmed().toLower(), lines.at(i).mid(colon + 1).trimmed());
        }
        const int length = request.headers.value("content-length", "0").toInt();
        if (buffer.size() < headerEnd + 4 + length)
            return;
        request.body = buffer.mid(headerEnd + 4, length);
        buffer.remove(0, headerEnd + 4 + length);
        m_requests.append(request);
        answer(socket, request);
    }
}

void HttpTestServer::answer(QTcpSocket* socket, const Request& request)
{
    Answer reply;
    if (m_responder)
        reply = m_responder(request);
    if (reply.silent)
        return;
    if (reply.drop) {
        socket->abort();
        return;
    }
    QByteArray head = "HTTP/1.1 " + QByteArray::number(reply.status) + " Status\r\n";
    head += "Content-Type: " + reply.contentType + "\r\n";
    head += "Content-Length: " + QByteArray::number(reply.body.size()) + "\r\n";
    for (const auto& header : reply.extraHeaders)
        head += header.first + ": " + header.second + "\r\n";
    head += "Connection: close\r\n\r\n";
    socket->write(head + reply.body);
    socket->disconnectFromHost();
}
