#include "FaultSwitches.h"

#include <QJsonValue>

namespace Velmora::BackendSim {

namespace {

const QMap<QString, FaultKind>& kindsByName()
{
    static const QMap<QString, FaultKind> kinds{
        {QStringLiteral("delay"), FaultKind::Delay},
        {QStringLiteral("hang"), FaultKind::Hang},
        {QStringLiteral("error"), FaultKind::Error},
        {QStringLiteral("redirect"), FaultKind::Redirect},
        {QStringLiteral("drop"), FaultKind::Drop},
    };
    return kinds;
}

bool readNumber(const QString& text, int minimum, int maximum, int* result)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < minimum || value > maximum)
        return false;
    *result = value;
    return true;
}

} // namespace

QJsonObject FaultRule::toJson() const
{
    QJsonObject object{{QStringLiteral("kind"), kindName(kind)},
                       {QStringLiteral("call"), call},
                       {QStringLiteral("times"), times}};
    if (!method.isEmpty())
        object.insert(QStringLiteral("method"), method);
    if (kind == FaultKind::Delay)
        object.insert(QStringLiteral("ms"), milliseconds);
    if (kind == FaultKind::Error)
        object.insert(QStringLiteral("status"), status);
    if (kind == FaultKind::Redirect && !location.isEmpty())
        object.insert(QStringLiteral("location"), location);
    return object;
}

std::optional<FaultRule> FaultRule::fromText(const QString& text, QString* error)
{
    QMap<QString, QString> values;
    for (const QString& item : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const int equals = item.indexOf(QLatin1Char('='));
        if (equals <= 0) {
            *error = QStringLiteral("'%1' is not key=value").arg(item);
            return std::nullopt;
        }
        values.insert(item.left(equals).trimmed(), item.mid(equals + 1).trimmed());
    }
    return fromMap(values, error);
}

std::optional<FaultRule> FaultRule::fromJson(const QJsonObject& object, QString* error)
{
    QMap<QString, QString> values;
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QJsonValue value = it.value();
        if (value.isString())
            values.insert(it.key(), value.toString());
        else if (value.isDouble())
            values.insert(it.key(), QString::number(value.toDouble(), 'f', 0));
        else {
            *error = QStringLiteral("'%1' must be a string or a number").arg(it.key());
            return std::nullopt;
        }
    }
    return fromMap(values, error);
}

std::optional<FaultRule> FaultRule::fromMap(const QMap<QString, QString>& values, QString* error)
{
    FaultRule rule;
    if (!values.contains(QStringLiteral("kind"))) {
        *error = QStringLiteral("a fault needs a kind (%1)").arg(kindsByName().keys().join(QLatin1String(", ")));
        return std::nullopt;
    }
    for (auto it = values.begin(); it != values.end(); ++it) {
        const QString& key = it.key();
        const QString& value = it.value();
        bool good = true;
        if (key == QLatin1String("kind")) {
            good = kindsByName().contains(value);
            rule.kind = kindsByName().value(value);
        } else if (key == QLatin1String("call")) {
            good = !value.isEmpty() && !value.contains(QLatin1Char('/'));
            rule.call = value;
        } else if (key == QLatin1String("method")) {
            rule.method = value.toUpper();
            good = !rule.method.isEmpty();
        } else if (key == QLatin1String("times")) {
            good = readNumber(value, -1, 1000000, &rule.times) && rule.times != 0;
        } else if (key == QLatin1String("ms")) {
            good = readNumber(value, 0, 600000, &rule.milliseconds);
        } else if (key == QLatin1String("status")) {
            good = readNumber(value, 100, 599, &rule.status);
        } else if (key == QLatin1String("location")) {
            good = !value.isEmpty();
            rule.location = value;
        } else {
            *error = QStringLiteral("unknown fault key '%1'").arg(key);
            return std::nullopt;
        }
        if (!good) {
            *error = QStringLiteral("bad value '%1' for fault key '%2'").arg(value, key);
            return std::nullopt;
        }
    }
    return rule;
}

QString FaultRule::kindName(FaultKind kind)
{
    return kindsByName().key(kind);
}

void FaultSwitches::add(const FaultRule& rule)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_rules.append(rule);
}

void FaultSwitches::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_rules.clear();
}

std::optional<FaultRule> FaultSwitches::take(const QString& method, const QString& call)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (int i = 0; i < m_rules.size(); ++i) {
        FaultRule& rule = m_rules[i];
        if (rule.call != QLatin1String("*") && rule.call != call)
            continue;
        if (!rule.method.isEmpty() && rule.method != method)
            continue;
        const FaultRule caught = rule;
        if (rule.times > 0 && --rule.times == 0)
            m_rules.removeAt(i);
        return caught;
    }
    return std::nullopt;
}

QJsonArray FaultSwitches::describe() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    QJsonArray rules;
    for (const FaultRule& rule : m_rules)
        rules.append(rule.toJson());
    return rules;
}

} // namespace Velmora::BackendSim
