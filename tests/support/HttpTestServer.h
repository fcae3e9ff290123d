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
        // With a value of 0 or more, only the head and that many bytes of the body go out; the
        // rest waits for releaseStalled().
        int stallAfter = -1;
    };
    using Responder = std::function<Answer(const Request&)>;

    explicit HttpTestServer(QObject* parent = nullptr);
    ~HttpTestServer() override;

    bool listen();
    // The base address the program's client resolves its paths against.
    QUrl baseUrl() const;

    // Answers are used once each, in order; when none is left the last one used repeats.
    void enqueue(const Answer& answer);
    // Answers by looking at each request; once set, the queue of answers is not used.
    void setResponder(const Responder& responder) { m_responder = responder; }
    // Sends the rest of every stalled answer and closes those connections.
    void releaseStalled();
    // Stops listening and drops open connections: the next requests are refused.
    void shutDown();
    // Listens again on the same port.
    bool restart();
    QList<Request> requests() const { return m_requests; }
    bool waitForRequests(int count, int timeoutMs = 5000);

signals:
    void requestReceived();

private:
    void onNewConnection();
    void onReadyRead(QTcpSocket* socket);
    void answer(QTcpSocket* socket, const Request& request);

    QTcpServer m_server;
    QMap<QTcpSocket*, QByteArray> m_pending;
    QList<Request> m_requests;
    QList<Answer> m_answers;
    Responder m_responder;
    QList<QPair<QTcpSocket*, QByteArray>> m_stalled;
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
