#include "devices/FilePropertySource.h"

#include "common/Sysfs.h"

namespace Velmora::Daemon::Devices {

FilePropertySource::FilePropertySource(const QString& folder)
    : m_folder(folder)
{
}

Properties FilePropertySource::properties(const QString& name, const QString&)
{
    Properties properties;
    const std::optional<QByteArray> text = Sysfs::read(m_folder + QLatin1Char('/') + name);
    if (!text)
        return properties;
    for (const QByteArray& line : text->split('\n')) {
        const int equals = line.indexOf('=');
        if (equals > 0)
            properties.insert(QString::fromUtf8(line.left(equals)), QString::fromUtf8(line.mid(equals + 1)));
    }
    return properties;
}

} // namespace Velmora::Daemon::Devices
