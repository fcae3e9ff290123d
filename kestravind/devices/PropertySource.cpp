#include "devices/PropertySource.h"

namespace Velmora::Daemon::Devices {

QString decodedValue(const QString& encoded)
{
    if (!encoded.contains(QLatin1String("\\x")))
        return encoded;
    const QByteArray bytes = encoded.toUtf8();
    QByteArray decoded;
    decoded.reserve(bytes.size());
    for (int i = 0; i < bytes.size(); ++i) {
        if (bytes.at(i) == '\\' && i + 3 < bytes.size() && bytes.at(i + 1) == 'x') {
            bool ok = false;
            const int value = bytes.mid(i + 2, 2).toInt(&ok, 16);
            if (ok) {
                decoded.append(static_cast<char>(value));
                i += 3;
                continue;
            }
        }
        decoded.append(bytes.at(i));
    }
    return QString::fromUtf8(decoded);
}

QString readableProperty(const Properties& properties, const QString& key, bool underscoresAreBlanks)
{
    const auto encoded = properties.constFind(key + QLatin1String("_ENC"));
    if (encoded != properties.constEnd())
        return decodedValue(encoded.value()).trimmed();
    QString value = properties.value(key);
    if (underscoresAreBlanks)
        value.replace(QLatin1Char('_'), QLatin1Char(' '));
    return value.trimmed();
}

} // namespace Velmora::Daemon::Devices
