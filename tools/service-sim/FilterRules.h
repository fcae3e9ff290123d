#pragma once

#include <QString>
#include <QStringList>

namespace Velmora::ServiceSim {

// How a migration filter sorts the files of a volume: what lies under a system path always goes
// across; of the rest, what lies under a left-out path or has a left-out extension stays behind.
// Paths are full ("C:\\Users\\alex\\Videos"), compared without regard to case.
class FilterRules
{
public:
    enum Bucket { System = 0, LeftOut = 1, Kept = 2 };

    FilterRules(const QStringList& systemPaths, const QStringList& leftOutPaths, const QStringList& leftOutExtensions);

    Bucket classify(const QString& fullPath) const;
    bool keeps(const QString& fullPath) const { return classify(fullPath) != LeftOut; }

    // Splits the comma-separated lists of the service's requests, dropping empty items.
    static QStringList splitList(const QString& text);

private:
    static bool isUnder(const QString& path, const QStringList& roots);

    QStringList m_systemPaths;
    QStringList m_leftOutPaths;
    QStringList m_leftOutExtensions;
};

} // namespace Velmora::ServiceSim
