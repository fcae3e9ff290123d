#pragma once

#include <QJsonValue>
#include <QString>

namespace Velmora::ServiceSim::SizeText {

// Reads a size as scenarios write it: a plain number of bytes, or a number with a unit, decimal
// ("480 GB") or binary ("100 MiB"). Returns false for anything else.
bool parse(const QString& text, quint64* bytes);
bool parse(const QJsonValue& value, quint64* bytes);

} // namespace Velmora::ServiceSim::SizeText
