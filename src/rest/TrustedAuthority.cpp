#include "rest/TrustedAuthority.h"

#include "logger/Logger.h"

#include <QSslCertificate>
#include <QSslConfiguration>

namespace REST {

bool addTrustedAuthority(const QString& path)
{
    const QList<QSslCertificate> certificates = QSslCertificate::fromPath(path, QSsl::Pem);
    if (certificates.isEmpty()) {
        Velmora::Logger::warning(QString(), QStringLiteral("No certificate authority in %1").arg(path));
        return false;
    }
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(configuration.caCertificates() + certificates);
    QSslConfiguration::setDefaultConfiguration(configuration);
    Velmora::Logger::info(QString(), QStringLiteral("Trusting the certificate authority of %1").arg(path));
    return true;
}

} // namespace REST
