#include "message/FrameReader.h"

#include <QtEndian>

namespace Velmora::Message {

void FrameReader::append(const QByteArray& bytes)
{
    m_buffer.append(bytes);
}

bool FrameReader::next(Frame& frame)
{
    while (pendingBytes() >= Message::HeaderSize) {
        const auto* header = reinterpret_cast<const uchar*>(m_buffer.constData()) + m_offset;
        if (qFromLittleEndian<quint32>(header) != Message::SyncPattern) {
            ++m_offset;
            ++m_skipped;
            continue;
        }
        const quint32 length = qFromLittleEndian<quint32>(header + 4);
        if (static_cast<quint64>(pendingBytes() - Message::HeaderSize) < length)
            break;
        frame.type = qFromLittleEndian<quint32>(header + 8);
        frame.payload = m_buffer.mid(m_offset + Message::HeaderSize, static_cast<int>(length));
        m_offset += Message::HeaderSize + length;
        compact();
        return true;
    }
    compact();
    return false;
}

qint64 FrameReader::announcedLength() const
{
    if (pendingBytes() < Message::HeaderSize)
        return -1;
    const auto* header = reinterpret_cast<const uchar*>(m_buffer.constData()) + m_offset;
    if (qFromLittleEndian<quint32>(header) != Message::SyncPattern)
        return -1;
    return qFromLittleEndian<quint32>(header + 4);
}

void FrameReader::compact()
{
    if (m_offset == m_buffer.size()) {
        m_buffer.clear();
        m_offset = 0;
    } else if (m_offset > pendingBytes()) {
        m_buffer.remove(0, static_cast<int>(m_offset));
        m_offset = 0;
    }
}

QByteArray FrameReader::encode(quint32 type, const QByteArray& payload)
{
    // Written here rather than by Message, whose type field cannot hold a number that names no
    // message: the peers send such numbers on purpose.
    QByteArray frame(Message::HeaderSize, Qt::Uninitialized);
    auto* header = reinterpret_cast<uchar*>(frame.data());
    qToLittleEndian<quint32>(Message::SyncPattern, header);
    qToLittleEndian<quint32>(static_cast<quint32>(payload.size()), header + 4);
    qToLittleEndian<quint32>(type, header + 8);
    return frame + payload;
}

} // namespace Velmora::Message
