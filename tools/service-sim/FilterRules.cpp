#include "FilterRules.h"

namespace Velmora::ServiceSim {

namespace {

QStringList withoutTrailingSeparators(const QStringList& paths)
{
    QStringList result;
    for (QString path : paths) {
        while (path.endsWith(QLatin1Char('\\')))
            path.chop(1);
        if (!path.isEmpty())
            result << path;
    }
    return result;
}

} // namespace

FilterRules::FilterRules(const QStringList& systemPaths, const QStringList& leftOutPaths,
    const QStringList& leftOutExtensions)
    : m_systemPaths(withoutTrailingSeparators(systemPaths))
    , m_leftOutPaths(withoutTrailingSeparators(leftOutPaths))
{
    for (QString extension : leftOutExtensions) {
        extension = extension.trimmed();
        if (extension.startsWith(QLatin1Char('*')))
            extension.remove(0, 1);
        if (!extension.isEmpty() && !extension.startsWith(QLatin1Char('.')))
            extension.prepend(QLatin1Char('.'));
        if (!extension.isEmpty())
            m_leftOutExtensions << extension;
    }
}

QStringList FilterRules::splitList(const QString& text)
{
    QStringList items;
    for (const QString& item : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        if (!item.trimmed().isEmpty())
            items << item.trimmed();
    }
    return items;
}

bool FilterRules::isUnder(const QString& path, const QStringList& roots)
{
    for (const QString& root : roots) {
        if (path.startsWith(root, Qt::CaseInsensitive)
            && (path.size() == root.size() || path.at(root.size()) == QLatin1Char('\\')))
            return true;
    }
    return false;
}

FilterRules::Bucket FilterRules::classify(const QString& fullPath) const
{
    if (isUnder(fullPath, m_systemPaths))
        return System;
    if (isUnder(fullPath, m_leftOutPaths))
        return LeftOut;
    for (const QString& extension : m_leftOutExtensions) {
        if (fullPath.endsWith(extension, Qt::CaseInsensitive))
            return LeftOut;
    }
    return Kept;
}

} // namespace Velmora::ServiceSim
