#pragma once

#include "message/Message.h"

#include <QByteArray>

namespace Velmora::Message {

// Cuts frames out of a byte stream for the peers of the pipe client (the simulated service, the
// test fakes). Same wire rules as the client: a frame starts at the sync pattern, bytes before it
// are skipped one at a time, and a header may announce an empty payload. It logs nothing.
class FrameReader
{
public:
    struct Frame {
        quint32 type = 0;
        QByteArray payload;
    };

    void append(const QByteArray& bytes);

    // Takes the next whole frame, if one is there.
    bool next(Frame& frame);

    // Bytes dropped while looking for a sync pattern, since construction.
    qint64 skippedBytes() const { return m_skipped; }
    // Bytes received and not yet part of a delivered frame.
    qsizetype pendingBytes() const { return m_buffer.size() - m_offset; }

    // The payload length announced by the header the reader stands at, or -1 while no whole
    // header is there. Valid after next() returned false: it lets a peer refuse an absurd frame
    // before its payload is buffered.
    qint64 announcedLength() const;

    static QByteArray encode(quint32 type, const QByteArray& payload);

private:
    void compact();

    QByteArray m_buffer;
    qsizetype m_offset = 0;
    qint64 m_skipped = 0;
};

} // namespace Velmora::Message
