#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QTcpServer>
#include <QUrl>

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
    };

    explicit HttpTestServer(QObject* parent = nullptr);

    bool listen();
    // The base address the program's client resolves its paths against.
    QUrl baseUrl() const;

    // Answers are used in order; the last one repeats.
    void enqueue(const Answer& answer);
    QList<Request> requests() const { return m_requests; }
    bool waitForRequests(int count, int timeoutMs = 5000);

signals:
    void requestReceived();

private:
    void onNewConnection();
    void onReadyRead(QTcpSocket* socket);
    void answer(QTcpSocket* socket);

    QTcpServer m_server;
    QMap<QTcpSocket*, QByteArray> m_pending;
    QList<Request> m_requests;
    QList<Answer> m_answers;
};
