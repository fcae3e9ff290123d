#include "smart/SmartAttribute.h"

namespace Velmora::Smart {

SmartAttribute::SmartAttribute(quint32 id, quint32 current, quint32 worst, quint32 threshold, quint32 status,
    const QByteArray& data, const QString& name)
    : m_id(id)
    , m_current(current)
    , m_worst(worst)
    , m_threshold(threshold)
    , m_status(status)
    , m_data(RawSize, '\0')
    , m_name(name)
{
    const int count = qMin(data.size(), int(RawSize));
    for (int i = 0; i < count; ++i)
        m_data[i] = data.at(i);
}

quint64 SmartAttribute::littleEndian(int first, int count) const
{
    quint64 value = 0;
    for (int i = first + count - 1; i >= first; --i)
        value = (value << 8) | quint8(m_data.at(i));
    return value;
}

} // namespace Velmora::Smart
