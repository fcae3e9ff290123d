#include "migration/FileExt.h"

namespace Velmora::Migration {

FileExt::FileExt(const QString& text, QObject* parent)
    : QObject(parent)
    , m_extension(normalized(text))
{
}

QString FileExt::normalized(const QString& text)
{
    QString extension = text.trimmed();
    if (extension.startsWith(QLatin1Char('*')))
        extension.remove(0, 1);
    if (!extension.startsWith(QLatin1Char('.')))
        extension.prepend(QLatin1Char('.'));
    return extension.toLower();
}

} // namespace Velmora::Migration
