#pragma once

#include <QByteArray>
#include <QList>
#include <QMetaType>
#include <QMap>
#include <QObject>
#include <QTcpServer>
#include <QUrl>

#include <functional>

class QTcpSocket;

// A plain HTTP/1.1 server on loopback for the web-call tests: records every request and answers
// with what the test scripted, or not at all.
class HttpTestServer : public QObject
{
    Q_OBJECT

public:
    struct Request {
        QByteArray method;
        QByteArray target;  // path and query as sent
        QMap<QByteArray, QByteArray> headers;  // names in lower case
        QByteArray body;
    };

    struct Answer {
        int status = 200;
        QByteArray contentType = "application/json";
        QByteArray body;
        QList<QPair<QByteArray, QByteArray>> extraHeaders;
        bool silent = false;  // never answer
        bool drop = false;    // close the connection without a word
    };
    using Responder = std::function<Answer(const Request&)>;

    explicit HttpTestServer(QObject* parent = nullptr);
    ~HttpTestServer() override;

    bool listen();
    // The base address the program's client resolves its paths against.
    QUrl baseUrl() const;

    // Answers by looking at each request.
    void setResponder(const Responder& responder) { m_responder = responder; }
    // Stops listening and drops open connections: the next requests are refused.
    void shutDown();
    // Listens again on the same port.
    bool restart();
    QList<Request> requests() const { return m_requests; }
    bool waitForRequests(int count, int timeoutMs = 5000);

private:
    void onNewConnection();
    void onReadyRead(QTcpSocket* socket);
    void answer(QTcpSocket* socket, const Request& request);

    QTcpServer m_server;
    QMap<QTcpSocket*, QByteArray> m_pending;
    QList<Request> m_requests;
    Responder m_responder;
    quint16 m_port = 0;
};

// An answer with a status and a body, as most scripted answers are.
inline HttpTestServer::Answer answerOf(int status, const QByteArray& body,
    const QByteArray& contentType = "application/json")
{
    HttpTestServer::Answer answer;
    answer.status = status;
    answer.body = body;
    answer.contentType = contentType;
    return answer;
}

// Answers travel in data-driven test tables.
Q_DECLARE_METATYPE(HttpTestServer::Answer)
