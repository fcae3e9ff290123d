#pragma once

#include <QByteArray>
#include <QString>

namespace Velmora::Smart {

// One attribute of a drive's SMART table as the controller holds it. The raw value is always six
// bytes, least significant first; everything the program shows is decoded from those bytes.
class SmartAttribute
{
public:
    static constexpr int RawSize = 6;

    // Copies at most the first six bytes of `data`; missing high bytes stay zero.
    SmartAttribute(quint32 id, quint32 current, quint32 worst, quint32 threshold, quint32 status,
        const QByteArray& data, const QString& name = QString());

    quint32 id() const { return m_id; }
    quint32 current() const { return m_current; }
    quint32 worst() const { return m_worst; }
    quint32 threshold() const { return m_threshold; }
    quint32 status() const { return m_status; }
    QByteArray data() const { return m_data; }
    QString name() const { return m_name; }

    // The raw forms the controller families read their parameters from.
    quint64 raw48() const { return littleEndian(0, 6); }
    quint64 raw32() const { return littleEndian(0, 4); }
    quint64 lo16() const { return littleEndian(0, 2); }
    quint64 hi16() const { return littleEndian(2, 2); }
    quint64 byte0() const { return littleEndian(0, 1); }

private:
    quint64 littleEndian(int first, int count) const;

    const quint32 m_id;
    const quint32 m_current;
    const quint32 m_worst;
    const quint32 m_threshold;
    const quint32 m_status;
    QByteArray m_data;
    const QString m_name;
};

} // namespace Velmora::Smart
