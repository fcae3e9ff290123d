#include "rest/TrustedAuthority.h"

#include "logger/Logger.h"

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QStringList>

#include <utility>

namespace REST {

namespace {

// Main thread only, as every sender of web calls.
QStringList& pendingAuthorities()
{
    static QStringList paths;
    return paths;
}

} // namespace

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

void trustAuthorityBeforeFirstCall(const QString& path)
{
    pendingAuthorities().append(path);
}

void trustPendingAuthorities()
{
    const QStringList paths = std::exchange(pendingAuthorities(), QStringList());
    for (const QString& path : paths)
        addTrustedAuthority(path);
}

void prepareTls()
{
    trustPendingAuthorities();
    QSslSocket::supportsSsl();
}

} // namespace REST
