#include "system/Bytes.h"

#include "logger/Logger.h"

#include <QStringList>

#include <cmath>

namespace Velmora::System {

namespace {
const char* const UnitNames[] = {"B", "KB", "MB", "GB", "TB", "PB", "EB"};
constexpr int UnitCount = 7;

double power(int unit)
{
    return std::pow(1024.0, unit);
}
} // namespace

Bytes::Bytes(qint64 bytes)
{
    setValue(bytes);
}

Bytes::Bytes(double amount, int unit)
{
    setValue(static_cast<qint64>(amount * power(unit)));
}

Bytes::Bytes(const QString& text)
{
    QString number = text;
    int unit = B;
    for (int candidate = UnitCount - 1; candidate >= 0; --candidate) {
        const int at = text.indexOf(QLatin1String(UnitNames[candidate]));
        if (at >= 0) {
            unit = candidate;
            number.remove(at, static_cast<int>(qstrlen(UnitNames[candidate])));
            break;
        }
    }
    bool ok = false;
    const double amount = number.trimmed().toDouble(&ok);
    if (!ok) {
        Logger::error(QString(), QStringLiteral("Could not parse bytes size: %1.").arg(text));
        return;
    }
    setValue(static_cast<qint64>(amount * power(unit)));
}

void Bytes::setValue(qint64 bytes)
{
    m_value = bytes;
    m_unit = unitFor(bytes);
}

int Bytes::unitFor(qint64 bytes)
{
    for (int unit = 0; unit < UnitCount; ++unit) {
        if (static_cast<double>(bytes) / power(unit) < 1000.0)
            return unit;
    }
    return UnitCount - 1;
}

double Bytes::inUnit(int unit) const
{
    return static_cast<double>(m_value) / power(unit);
}

QString Bytes::toString() const
{
    return toString(m_unit);
}

QString Bytes::toString(int unit) const
{
    return QString::number(inUnit(unit), 'f', 2) + QLatin1Char(' ') + unitName(unit);
}

QString Bytes::unitName(int unit)
{
    return unit >= 0 && unit < UnitCount ? QLatin1String(UnitNames[unit]) : QString();
}

Bytes Bytes::roundedUp(const Bytes& size, int unit)
{
    const auto units = static_cast<qint32>(std::ceil(size.inUnit(unit)));
    return Bytes(static_cast<qint64>(units * power(unit)));
}

Bytes& Bytes::operator+=(const Bytes& other)
{
    setValue(m_value + other.m_value);
    return *this;
}

Bytes& Bytes::operator-=(const Bytes& other)
{
    *this = clampedDifference(m_value, other.m_value);
    return *this;
}

Bytes Bytes::operator*(double factor) const
{
    return Bytes(static_cast<qint64>(std::llround(static_cast<double>(m_value) * factor)));
}

Bytes Bytes::clampedDifference(qint64 a, qint64 b)
{
    return Bytes(a > b ? a - b : 0);
}

} // namespace Velmora::System
