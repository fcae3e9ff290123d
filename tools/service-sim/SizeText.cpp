#include "SizeText.h"

#include <QRegularExpression>

#include <cmath>

namespace Velmora::ServiceSim::SizeText {

namespace {

double unitFactor(const QString& unit)
{
    static const QStringList decimal{QStringLiteral("b"), QStringLiteral("kb"), QStringLiteral("mb"),
        QStringLiteral("gb"), QStringLiteral("tb")};
    static const QStringList binary{QString(), QStringLiteral("kib"), QStringLiteral("mib"),
        QStringLiteral("gib"), QStringLiteral("tib")};
    const QString lower = unit.toLower();
    if (lower.isEmpty())
        return 1.0;
    if (const int index = decimal.indexOf(lower); index >= 0)
        return std::pow(1000.0, index);
    if (const int index = binary.indexOf(lower); index > 0)
        return std::pow(1024.0, index);
    return -1.0;
}

} // namespace

bool parse(const QString& text, quint64* bytes)
{
    static const QRegularExpression pattern(QStringLiteral("^\\s*([0-9]+(?:\\.[0-9]+)?)\\s*([A-Za-z]*)\\s*$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return false;
    const double factor = unitFactor(match.captured(2));
    if (factor < 0)
        return false;
    // Whole numbers of bytes stay exact beyond what a double holds.
    if (factor == 1.0 && !match.captured(1).contains(QLatin1Char('.'))) {
        bool ok = false;
        const quint64 value = match.captured(1).toULongLong(&ok);
        if (ok)
            *bytes = value;
        return ok;
    }
    *bytes = static_cast<quint64>(std::llround(match.captured(1).toDouble() * factor));
    return true;
}

bool parse(const QJsonValue& value, quint64* bytes)
{
    if (value.isDouble()) {
        if (value.toDouble() < 0)
            return false;
        *bytes = static_cast<quint64>(std::llround(value.toDouble()));
        return true;
    }
    return value.isString() && parse(value.toString(), bytes);
}

} // namespace Velmora::ServiceSim::SizeText
