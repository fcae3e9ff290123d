#include "FactFile.h"

#include <QDir>
#include <QFile>

namespace Velmora::Daemon::Smart {

QByteArray readFactFile(const QString& path, qint64 maxBytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.read(maxBytes);
}

QString readFactText(const QString& path)
{
    return QString::fromUtf8(readFactFile(path)).trimmed();
}

QString rootPrefix(const QString& root)
{
    const QString clean = QDir::cleanPath(root);
    return clean == QLatin1String("/") ? QString() : clean;
}

} // namespace Velmora::Daemon::Smart
