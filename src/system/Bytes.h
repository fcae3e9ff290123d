#pragma once

#include <QString>
#include <QtGlobal>

namespace Velmora::System {

// A size in bytes, base 1024, with the unit it reads best in: the first unit at which the number
// drops below 1000. Subtraction never goes below zero.
class Bytes
{
public:
    enum Unit { B = 0, KB, MB, GB, TB, PB, EB };

    Bytes() = default;
    Bytes(qint64 bytes);  // NOLINT: sizes mix freely with plain byte counts
    Bytes(double amount, int unit);
    explicit Bytes(const QString& text);

    qint64 value() const { return m_value; }
    int unit() const { return m_unit; }
    void setValue(qint64 bytes);

    double inUnit(int unit) const;
    QString toString() const;
    QString toString(int unit) const;
    static QString unitName(int unit);

    // `size` in whole `unit`s, rounded towards positive infinity; the count is held in 32 bits.
    static Bytes roundedUp(const Bytes& size, int unit);

    // Made from an amount of a unit, the bytes are cut to a whole number.
    Bytes operator+(const Bytes& other) const { return Bytes(m_value + other.m_value); }
    Bytes operator-(const Bytes& other) const { return clampedDifference(m_value, other.m_value); }
    Bytes& operator+=(const Bytes& other);
    Bytes& operator-=(const Bytes& other);
    // Rounded to the nearest byte, halves away from zero.
    Bytes operator*(double factor) const;

    bool operator==(const Bytes& other) const { return m_value == other.m_value; }
    bool operator!=(const Bytes& other) const { return m_value != other.m_value; }
    bool operator<(const Bytes& other) const { return m_value < other.m_value; }
    bool operator>(const Bytes& other) const { return m_value > other.m_value; }
    bool operator<=(const Bytes& other) const { return m_value <= other.m_value; }
    bool operator>=(const Bytes& other) const { return m_value >= other.m_value; }

private:
    static Bytes clampedDifference(qint64 a, qint64 b);
    static int unitFor(qint64 bytes);

    static constexpr double Divisor = 1024.0;
    qint64 m_value = 0;
    int m_unit = B;
};

} // namespace Velmora::System
