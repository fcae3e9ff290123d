#include "BackendOptions.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace Velmora::BackendSim {

bool BackendOptions::parse(const QStringList& arguments, QString* error, bool* helpShown)
{
    *helpShown = false;
#ifdef KESTRAVIN_BACKEND_CERTIFICATE_DIR
    // The build makes a certificate set in its own tree; without options the server uses it.
    if (certificate.isEmpty())
        certificate = QStringLiteral(KESTRAVIN_BACKEND_CERTIFICATE_DIR "/server.pem");
    if (privateKey.isEmpty())
        privateKey = QStringLiteral(KESTRAVIN_BACKEND_CERTIFICATE_DIR "/server.key");
#endif
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Simulated web back-end of Kestravin: HTTPS on loopback, every call under /kestravin/public/api/."));
    const QCommandLineOption helpOption = parser.addHelpOption();
    const QCommandLineOption hostOption(QStringLiteral("host"), QStringLiteral("Address to listen on."),
                                        QStringLiteral("address"), host);
    const QCommandLineOption portOption(QStringLiteral("port"), QStringLiteral("Port; 0 picks a free one."),
                                        QStringLiteral("port"), QString::number(port));
    const QCommandLineOption certificateOption(QStringLiteral("certificate"),
                                               QStringLiteral("Server certificate (PEM)."), QStringLiteral("path"),
                                               certificate);
    const QCommandLineOption keyOption(QStringLiteral("key"), QStringLiteral("Server private key (PEM)."),
                                       QStringLiteral("path"), privateKey);
    const QCommandLineOption sharedKeyOption(QStringLiteral("shared-key"),
                                             QStringLiteral("Key of the handshake's HMAC."), QStringLiteral("text"),
                                             sharedKey);
    const QCommandLineOption lifetimeOption(QStringLiteral("session-lifetime"),
                                            QStringLiteral("Seconds a session lasts; 0: until expired by a test."),
                                            QStringLiteral("seconds"), QString::number(sessionLifetimeSeconds));
    const QCommandLineOption catalogueOption(QStringLiteral("catalogue"),
                                             QStringLiteral("JSON file of the known drives."), QStringLiteral("path"),
                                             catalogue);
    const QCommandLineOption versionOption(QStringLiteral("app-version"),
                                           QStringLiteral("Newest application version offered."),
                                           QStringLiteral("version"), applicationVersion);
    const QCommandLineOption installerOption(QStringLiteral("installer"),
                                             QStringLiteral("File served as the installer."), QStringLiteral("path"));
    const QCommandLineOption adPictureOption(QStringLiteral("ad-picture"),
                                             QStringLiteral("Picture served as the advertisement."),
                                             QStringLiteral("path"));
    const QCommandLineOption adLinkOption(QStringLiteral("ad-link"),
                                          QStringLiteral("Address opened by a click on the advertisement."),
                                          QStringLiteral("url"));
    const QCommandLineOption noAdOption(QStringLiteral("no-ad"),
                                        QStringLiteral("Offer no advertisement (an empty \"file\")."));
    const QCommandLineOption captchaOption(QStringLiteral("captcha-text"),
                                           QStringLiteral("Fixed captcha text instead of a random one."),
                                           QStringLiteral("text"));
    const QCommandLineOption faultOption(
        QStringLiteral("fault"),
        QStringLiteral("Switch a fault on, e.g. kind=delay,call=firmware,ms=1500,times=2. Kinds: delay, hang, "
                       "error (status=500), redirect (location=...), drop. Repeatable."),
        QStringLiteral("rule"));
    const QCommandLineOption quietOption(QStringLiteral("quiet"), QStringLiteral("Log refusals only."));
    parser.addOptions({hostOption, portOption, certificateOption, keyOption, sharedKeyOption, lifetimeOption,
                       catalogueOption, versionOption, installerOption, adPictureOption, adLinkOption, noAdOption,
                       captchaOption, faultOption, quietOption});

    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    if (parser.isSet(helpOption)) {
        *helpShown = true;
        *error = parser.helpText();
        return false;
    }
    if (!parser.positionalArguments().isEmpty()) {
        *error = QStringLiteral("unexpected argument '%1'").arg(parser.positionalArguments().constFirst());
        return false;
    }

    bool ok = false;
    host = parser.value(hostOption);
    port = parser.value(portOption).toInt(&ok);
    if (!ok || port < 0 || port > 65535) {
        *error = QStringLiteral("bad port '%1'").arg(parser.value(portOption));
        return false;
    }
    sessionLifetimeSeconds = parser.value(lifetimeOption).toInt(&ok);
    if (!ok || sessionLifetimeSeconds < 0) {
        *error = QStringLiteral("bad session lifetime '%1'").arg(parser.value(lifetimeOption));
        return false;
    }
    certificate = parser.value(certificateOption);
    privateKey = parser.value(keyOption);
    sharedKey = parser.value(sharedKeyOption);
    catalogue = parser.value(catalogueOption);
    applicationVersion = parser.value(versionOption);
    installer = parser.value(installerOption);
    adPicture = parser.value(adPictureOption);
    adLink = parser.value(adLinkOption);
    offerAd = !parser.isSet(noAdOption);
    captchaText = parser.value(captchaOption).toUpper();
    quiet = parser.isSet(quietOption);

    if (sharedKey.isEmpty() || applicationVersion.isEmpty()) {
        *error = QStringLiteral("the shared key and the application version must not be empty");
        return false;
    }
    for (const QString& path : {certificate, privateKey}) {
        if (!QFileInfo(path).isFile()) {
            *error = QStringLiteral("no certificate or key file at '%1' (make them with make-certificates.sh)").arg(path);
            return false;
        }
    }
    for (const QString& text : parser.values(faultOption)) {
        QString reason;
        const auto rule = FaultRule::fromText(text, &reason);
        if (!rule) {
            *error = QStringLiteral("--fault %1: %2").arg(text, reason);
            return false;
        }
        faults.append(*rule);
    }
    return true;
}

} // namespace Velmora::BackendSim
