#include "SmartctlJson.h"

#include "SmartErrors.h"
#include "SmartLog.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Velmora::Daemon::Smart {

using SmartAnswer = Velmora::Message::Smart;

namespace {

constexpr quint64 Raw48Max = 0xFFFFFFFFFFFFull;
// An attribute table has one row per id; anything longer is not smartctl talking.
constexpr int MaxAttributes = 255;
constexpr int SupportedJsonFormat = 1;

// A JSON number that is a whole, non-negative value no larger than `max`. smartctl prints its
// counters as plain numbers; doubles hold every 48-bit raw value exactly.
bool readUnsigned(const QJsonValue& value, quint64 max, quint64* out)
{
    if (!value.isDouble())
        return false;
    const double number = value.toDouble();
    // Range first: converting a double beyond the integer's range is undefined.
    if (!(number >= 0) || number > static_cast<double>(max) || number != std::floor(number))
        return false;
    *out = static_cast<quint64>(number);
    return true;
}

// The six raw bytes, least significant first, as hexadecimal text: the form the program decodes.
std::string rawText(quint64 raw)
{
    QByteArray bytes(6, '\0');
    for (int i = 0; i < 6; ++i)
        bytes[i] = static_cast<char>((raw >> (8 * i)) & 0xFF);
    return bytes.toHex().toUpper().toStdString();
}

void addAttribute(SmartAnswer* answer, quint32 id, quint32 current, quint32 worst, quint32 threshold,
                  quint32 status, quint64 raw)
{
    auto* attribute = answer->add_attributes();
    attribute->set_id(id);
    attribute->set_current(current);
    attribute->set_worst(worst);
    attribute->set_threshold(threshold);
    attribute->set_status(status);
    attribute->set_data(rawText(raw));
}

QString smartctlMessages(const QJsonObject& root)
{
    QStringList texts;
    const QJsonArray messages = root.value(QLatin1String("smartctl")).toObject().value(QLatin1String("messages")).toArray();
    for (const QJsonValue& message : messages)
        texts << message.toObject().value(QLatin1String("string")).toString();
    return texts.isEmpty() ? QStringLiteral("no message") : texts.join(QLatin1String("; "));
}

void mapAtaTable(const QJsonArray& table, const QString& device, SmartAnswer* answer)
{
    if (table.size() > MaxAttributes) {
        qCWarning(lcSmart).noquote() << "smartctl listed" << table.size() << "attributes for" << device;
        return;
    }
    for (const QJsonValue& row : table) {
        const QJsonObject entry = row.toObject();
        quint64 id = 0, value = 0, worst = 0, threshold = 0, flags = 0, raw = 0;
        if (!readUnsigned(entry.value(QLatin1String("id")), 255, &id) || id == 0
            || !readUnsigned(entry.value(QLatin1String("raw")).toObject().value(QLatin1String("value")), Raw48Max, &raw)) {
            qCWarning(lcSmart).noquote() << "Skipping an unreadable SMART attribute of" << device;
            continue;
        }
        readUnsigned(entry.value(QLatin1String("value")), 255, &value);
        readUnsigned(entry.value(QLatin1String("worst")), 255, &worst);
        readUnsigned(entry.value(QLatin1String("thresh")), 255, &threshold);
        readUnsigned(entry.value(QLatin1String("flags")).toObject().value(QLatin1String("value")), 0xFFFF, &flags);
        addAttribute(answer, quint32(id), quint32(value), quint32(worst), quint32(threshold), quint32(flags), raw);
    }
}

void mapNvmeHealth(const QJsonObject& log, SmartAnswer* answer)
{
    quint64 value = 0;
    const auto field = [&log, &value](const char* name) {
        return readUnsigned(log.value(QLatin1String(name)), Raw48Max, &value);
    };
    // No normalised values exist on NVMe: current, worst and threshold stay 0, except for the
    // remaining life, which is a normalised value of its own.
    if (field("power_on_hours"))
        addAttribute(answer, 9, 0, 0, 0, 0, value);
    if (field("power_cycles"))
        addAttribute(answer, 12, 0, 0, 0, 0, value);
    if (field("temperature"))
        addAttribute(answer, 194, 0, 0, 0, 0, std::min<quint64>(value, 255));
    if (field("percentage_used")) {
        // The drive may report more than 100 % used once it outlives its rating.
        const quint32 remaining = value >= 100 ? 0 : quint32(100 - value);
        addAttribute(answer, 231, remaining, remaining, 0, 0, remaining);
    }
    if (readUnsigned(log.value(QLatin1String("data_units_written")), quint64(1) << 53, &value)) {
        // 512,000 bytes per unit, 2^30 per GiB: 512000 / 2^30 = 125 / 2^18; below 2^53 units
        // the product stays within 64 bits.
        const quint64 gib = (value * 125) >> 18;
        addAttribute(answer, 241, 0, 0, 0, 0, std::min(gib, Raw48Max));
    }
}

} // namespace

SmartAnswer SmartctlJson::toSmart(const QByteArray& output, int exitStatus, const QString& device)
{
    SmartAnswer answer;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(output, &error);
    const QJsonObject root = document.object();
    const int format = root.value(QLatin1String("json_format_version")).toArray().at(0).toInt(-1);
    if (error.error != QJsonParseError::NoError || !document.isObject() || format != SupportedJsonFormat) {
        qCWarning(lcSmart).noquote() << "The output of smartctl for" << device << "cannot be parsed:"
                                     << (error.error != QJsonParseError::NoError ? error.errorString()
                                                                                 : QStringLiteral("not its JSON format"))
                                     << "at offset" << error.offset << "of" << output.size() << "bytes";
        answer.set_errorcode(static_cast<SmartAnswer::Error>(ToolFailed));
        return answer;
    }

    const QJsonObject support = root.value(QLatin1String("smart_support")).toObject();
    const QJsonValue ataTable = root.value(QLatin1String("ata_smart_attributes")).toObject().value(QLatin1String("table"));
    const QJsonValue nvmeLog = root.value(QLatin1String("nvme_smart_health_information_log"));
    const bool enabled = support.value(QLatin1String("enabled")).toBool(true);
    if (!enabled)
        qCInfo(lcSmart).noquote() << "SMART is disabled on" << device;
    else if (ataTable.isArray())
        mapAtaTable(ataTable.toArray(), device, &answer);
    else if (nvmeLog.isObject())
        mapNvmeHealth(nvmeLog.toObject(), &answer);
    if (answer.attributes_size() > 0) {
        // Exit bits 3 and 4: the drive's own verdict is "failing", or an attribute is at its threshold.
        if (exitStatus & 0x18)
            qCWarning(lcSmart).noquote() << "smartctl finds" << device << "failing, exit status" << exitStatus;
        return answer;
    }
    qCInfo(lcSmart).noquote() << "No SMART data for" << device << "- smartctl exit status" << exitStatus
                              << "said:" << smartctlMessages(root);
    answer.set_errorcode(static_cast<SmartAnswer::Error>(NoSmart));
    return answer;
}

} // namespace Velmora::Daemon::Smart
