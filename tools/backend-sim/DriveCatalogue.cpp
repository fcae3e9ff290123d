#include "DriveCatalogue.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace Velmora::BackendSim {

namespace {

QString withoutBlanks(QString text)
{
    return text.remove(QLatin1Char(' '));
}

} // namespace

bool DriveCatalogue::load(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
        return false;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (!document.isObject() || !document.object().value(QStringLiteral("drives")).isArray()) {
        *error = QStringLiteral("%1 is not an object with a \"drives\" array (%2)").arg(path, parseError.errorString());
        return false;
    }
    QList<Entry> entries;
    const QJsonArray drives = document.object().value(QStringLiteral("drives")).toArray();
    for (int i = 0; i < drives.size(); ++i) {
        const QJsonObject object = drives.at(i).toObject();
        Entry entry{object.value(QStringLiteral("model")).toString(),
                    object.value(QStringLiteral("firmware")).toString(),
                    object.value(QStringLiteral("smartType")).toString(),
                    object.value(QStringLiteral("newestFirmware")).toString()};
        // The program drops a cached line with an empty field, so the server never sends one.
        if (entry.model.isEmpty() || entry.firmware.isEmpty() || entry.smartType.isEmpty()
            || entry.newestFirmware.isEmpty()) {
            *error = QStringLiteral("%1: drive %2 needs non-empty model, firmware, smartType and newestFirmware")
                         .arg(path)
                         .arg(i);
            return false;
        }
        entries.append(entry);
    }
    m_entries = entries;
    return true;
}

QJsonArray DriveCatalogue::supportedModels() const
{
    QJsonArray models;
    for (const Entry& entry : m_entries) {
        models.append(QJsonObject{{QStringLiteral("model"), entry.model},
                                  {QStringLiteral("firmware"), entry.firmware},
                                  {QStringLiteral("smartType"), entry.smartType}});
    }
    return models;
}

const DriveCatalogue::Entry* DriveCatalogue::find(const QString& driveModel, const QString& firmware) const
{
    const QString model = withoutBlanks(driveModel);
    const QString line = withoutBlanks(firmware);
    const Entry* sameModel = nullptr;
    for (const Entry& entry : m_entries) {
        if (!model.contains(entry.model, Qt::CaseInsensitive))
            continue;
        if (line.contains(entry.firmware, Qt::CaseInsensitive))
            return &entry;
        if (!sameModel)
            sameModel = &entry;
    }
    return sameModel;
}

} // namespace Velmora::BackendSim
