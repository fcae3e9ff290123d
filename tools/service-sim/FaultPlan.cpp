#include "FaultPlan.h"

#include "message/Message.h"

#include <QJsonArray>
#include <QMetaEnum>

namespace Velmora::ServiceSim {

using Velmora::Message::Message;

bool FaultPlan::parseType(const QString& text, quint32* type)
{
    bool isNumber = false;
    const uint number = text.trimmed().toUInt(&isNumber);
    if (isNumber) {
        *type = number;
        return true;
    }
    const QMetaEnum types = QMetaEnum::fromType<Message::MessageType>();
    bool ok = false;
    const int value = types.keyToValue(text.trimmed().toLatin1().constData(), &ok);
    if (ok)
        *type = static_cast<quint32>(value);
    return ok;
}

namespace {

bool readTypeAndNumber(const QString& text, quint32* type, int* number, QString* error)
{
    const int equals = text.lastIndexOf(QLatin1Char('='));
    bool ok = false;
    if (equals > 0)
        *number = text.mid(equals + 1).toInt(&ok);
    if (!ok) {
        *error = QStringLiteral("Expected TYPE=NUMBER, got \"%1\"").arg(text);
        return false;
    }
    if (!FaultPlan::parseType(text.left(equals), type)) {
        *error = QStringLiteral("Unknown message type \"%1\"").arg(text.left(equals));
        return false;
    }
    return true;
}

} // namespace

bool FaultPlan::addDelay(const QString& text, QString* error)
{
    quint32 type = 0;
    int ms = 0;
    if (!readTypeAndNumber(text, &type, &ms, error))
        return false;
    m_delays.insert(type, qMax(0, ms));
    return true;
}

bool FaultPlan::addSilence(const QString& text, QString* error)
{
    quint32 type = 0;
    if (!parseType(text, &type)) {
        *error = QStringLiteral("Unknown message type \"%1\"").arg(text);
        return false;
    }
    m_silenced.insert(type);
    return true;
}

bool FaultPlan::addFailure(const QString& text, QString* error)
{
    Failure failure;
    QString typeAndCode = text;
    const int hash = text.indexOf(QLatin1Char('#'));
    const int equals = text.lastIndexOf(QLatin1Char('='));
    if (hash > 0 && equals > hash) {
        bool ok = false;
        failure.occurrence = text.mid(hash + 1, equals - hash - 1).toInt(&ok);
        if (!ok || failure.occurrence < 1) {
            *error = QStringLiteral("Expected TYPE#N=CODE with N from 1, got \"%1\"").arg(text);
            return false;
        }
        typeAndCode = text.left(hash) + text.mid(equals);
    }
    if (!readTypeAndNumber(typeAndCode, &failure.type, &failure.code, error))
        return false;
    m_failures.append(failure);
    return true;
}

bool FaultPlan::addUnplug(const QString& text, QString* error)
{
    Unplug unplug;
    const int at = text.indexOf(QLatin1Char('@'));
    const int hash = text.indexOf(QLatin1Char('#'), at + 1);
    bool driveOk = false;
    bool occurrenceOk = hash < 0;
    if (at > 0) {
        unplug.driveId = text.left(at).toUInt(&driveOk);
        if (hash > at)
            unplug.occurrence = text.mid(hash + 1).toInt(&occurrenceOk);
    }
    const QString type = text.mid(at + 1, hash < 0 ? -1 : hash - at - 1);
    if (!driveOk || !occurrenceOk || unplug.occurrence < 1 || !parseType(type, &unplug.type)) {
        *error = QStringLiteral("Expected DRIVE@TYPE or DRIVE@TYPE#N with N from 1, got \"%1\"").arg(text);
        return false;
    }
    m_unplugs.append(unplug);
    return true;
}

bool FaultPlan::setSplit(const QString& text, QString* error)
{
    if (text == QLatin1String("random")) {
        splitRandomly = true;
        return true;
    }
    bool ok = false;
    splitPieceSize = text.toInt(&ok);
    if (!ok || splitPieceSize < 1) {
        *error = QStringLiteral("Expected a piece size of at least 1 or \"random\", got \"%1\"").arg(text);
        splitPieceSize = 0;
        return false;
    }
    return true;
}

bool FaultPlan::setVersion(const QString& text, QString* error)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    QList<int> numbers;
    for (const QString& part : parts) {
        bool ok = false;
        const int number = part.toInt(&ok);
        if (!ok || number < 0)
            break;
        numbers.append(number);
    }
    if (numbers.size() != 3 || parts.size() != 3) {
        *error = QStringLiteral("Expected a version MAJOR.MINOR.PATCH, got \"%1\"").arg(text);
        return false;
    }
    version = numbers;
    return true;
}

std::optional<int> FaultPlan::failureFor(quint32 type, int occurrence) const
{
    for (const Failure& failure : m_failures) {
        if (failure.type == type && (failure.occurrence == 0 || failure.occurrence == occurrence))
            return failure.code;
    }
    return std::nullopt;
}

std::optional<quint32> FaultPlan::unplugFor(quint32 type, int occurrence) const
{
    for (const Unplug& unplug : m_unplugs) {
        if (unplug.type == type && unplug.occurrence == occurrence)
            return unplug.driveId;
    }
    return std::nullopt;
}

bool FaultPlan::addFromJson(const QJsonObject& faults, QString* error)
{
    const QJsonObject delays = faults.value(QStringLiteral("delay")).toObject();
    for (auto it = delays.begin(); it != delays.end(); ++it) {
        if (!addDelay(it.key() + QLatin1Char('=') + QString::number(it.value().toInt()), error))
            return false;
    }
    for (const QJsonValue& type : faults.value(QStringLiteral("never")).toArray()) {
        if (!addSilence(type.toString(), error))
            return false;
    }
    for (const QJsonValue& value : faults.value(QStringLiteral("fail")).toArray()) {
        const QJsonObject failure = value.toObject();
        QString text = failure.value(QStringLiteral("type")).toString();
        if (failure.contains(QStringLiteral("occurrence")))
            text += QLatin1Char('#') + QString::number(failure.value(QStringLiteral("occurrence")).toInt());
        text += QLatin1Char('=') + QString::number(failure.value(QStringLiteral("code")).toInt());
        if (!addFailure(text, error))
            return false;
    }
    for (const QJsonValue& value : faults.value(QStringLiteral("unplug")).toArray()) {
        const QJsonObject unplug = value.toObject();
        const QString text = QStringLiteral("%1@%2#%3")
                                 .arg(unplug.value(QStringLiteral("drive")).toInt())
                                 .arg(unplug.value(QStringLiteral("type")).toString())
                                 .arg(unplug.value(QStringLiteral("occurrence")).toInt(1));
        if (!addUnplug(text, error))
            return false;
    }
    garbageBytes = faults.value(QStringLiteral("garbageBytes")).toInt(garbageBytes);
    dropAfterFrames = faults.value(QStringLiteral("dropAfterFrames")).toInt(dropAfterFrames);
    exitAfterRequests = faults.value(QStringLiteral("exitAfterRequests")).toInt(exitAfterRequests);
    const QJsonValue split = faults.value(QStringLiteral("split"));
    if (!split.isUndefined() && !setSplit(split.isDouble() ? QString::number(split.toInt()) : split.toString(), error))
        return false;
    const QJsonValue versionText = faults.value(QStringLiteral("version"));
    if (!versionText.isUndefined() && !setVersion(versionText.toString(), error))
        return false;
    return true;
}

} // namespace Velmora::ServiceSim
