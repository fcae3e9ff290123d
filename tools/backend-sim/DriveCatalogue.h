#pragma once

#include <QJsonArray>
#include <QList>
#include <QString>

namespace Velmora::BackendSim {

// The drives the back-end knows, read once at start from a JSON file. An entry names a model
// family and a firmware line by fragments, the way the program matches them: the fragment must
// occur in the drive's model (blanks removed) and in its firmware, case aside.
class DriveCatalogue {
public:
    struct Entry {
        QString model;
        QString firmware;
        QString smartType;
        QString newestFirmware;
    };

    bool load(const QString& path, QString* error);

    // The list of supported models as the client receives it.
    QJsonArray supportedModels() const;
    // The entry for a drive: one whose model and firmware line both match, else the first whose
    // model matches; null when the model is unknown.
    const Entry* find(const QString& driveModel, const QString& firmware) const;
    int size() const { return m_entries.size(); }

private:
    QList<Entry> m_entries;
};

} // namespace Velmora::BackendSim
