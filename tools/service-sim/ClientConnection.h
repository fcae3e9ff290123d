#pragma once

#include "FaultPlan.h"
#include "Timings.h"

#include "message/FrameReader.h"

#include <QByteArray>
#include <QList>
#include <QLocalSocket>
#include <QObject>
#include <QRandomGenerator>
#include <QTimer>

namespace google::protobuf {
class MessageLite;
}

namespace Velmora::ServiceSim {

// One client of the pipe. Cuts its bytes into frames and hands them on; writes answers as frames,
// with the wire faults of the plan (garbage in front, frames in pieces, a connection dropped
// after so many frames). A client that sends rubbish only harms itself.
class ClientConnection : public QObject
{
    Q_OBJECT

public:
    ClientConnection(QLocalSocket* socket, int id, const FaultPlan& faults, const Timings& timings,
        QObject* parent = nullptr);

    int id() const { return m_id; }
    bool isOpen() const;

    void send(quint32 type, const QByteArray& payload);
    void send(quint32 type, const google::protobuf::MessageLite& message);

signals:
    void frameReceived(Velmora::ServiceSim::ClientConnection* client, quint32 type, QByteArray payload);
    void closed(Velmora::ServiceSim::ClientConnection* client);

private slots:
    void onReadyRead();
    void onDisconnected();
    void writeNextPiece();

private:
    QByteArray garbage();
    void queuePieces(const QByteArray& bytes);
    void countSentFrame();

    QLocalSocket* m_socket;
    const int m_id;
    const FaultPlan& m_faults;
    Velmora::Message::FrameReader m_reader;
    qint64 m_reportedSkipped = 0;
    QList<QByteArray> m_pieces;
    QList<int> m_frameEnds; // how many pieces are left until each queued frame is complete
    QTimer m_pieceTimer;
    int m_framesSent = 0;
    QRandomGenerator m_random;
};

} // namespace Velmora::ServiceSim
