#include "UpdateCalls.h"

#include "BackendOptions.h"
#include "Log.h"
#include "PictureMaker.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonObject>

namespace Velmora::BackendSim {

namespace {

bool readWhole(const QString& path, QByteArray* bytes, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
        return false;
    }
    *bytes = file.readAll();
    return true;
}

const char* pictureType(const QString& name)
{
    const QString suffix = QFileInfo(name).suffix().toLower();
    if (suffix == QLatin1String("png"))
        return "image/png";
    if (suffix == QLatin1String("gif"))
        return "image/gif";
    if (suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg"))
        return "image/jpeg";
    return "application/octet-stream";
}

} // namespace

bool UpdateCalls::configure(const BackendOptions& options, QString* error)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_version = options.applicationVersion;
    m_offerAd = options.offerAd;
    m_adLink = options.adLink;
    if (!options.installer.isEmpty()) {
        if (!readWhole(options.installer, &m_installer, error))
            return false;
        m_installerName = QFileInfo(options.installer).fileName();
    } else {
        m_installer = QByteArrayLiteral("#!/bin/sh\n"
                                        "# Stand-in installer served by the simulated back-end; it installs nothing.\n"
                                        "exit 0\n");
    }
    if (!options.adPicture.isEmpty()) {
        if (!readWhole(options.adPicture, &m_adPicture, error))
            return false;
        m_adPictureName = QFileInfo(options.adPicture).fileName();
    }
    return true;
}

void UpdateCalls::addRoutes(Router& router)
{
    router.route("GET", QStringLiteral("application"), QStringLiteral("application"), Access::WithSession,
                 [this](Exchange& exchange) { application(exchange); });
    router.route("GET", QStringLiteral("ad"), QStringLiteral("ad"), Access::WithSession,
                 [this](Exchange& exchange) { advertisement(exchange); });
    router.route("GET", QStringLiteral("files"), QStringLiteral("files/([^/]+)"), Access::Open,
                 [this](Exchange& exchange) { file(exchange); });
    router.route("GET", QStringLiteral("offer"), QStringLiteral("offer"), Access::Open,
                 [this](Exchange& exchange) { offerPage(exchange); });
    router.admin("PUT", QStringLiteral("application"), [this](Exchange& exchange) { changeApplication(exchange); });
    router.admin("PUT", QStringLiteral("ad"), [this](Exchange& exchange) { changeAdvertisement(exchange); });
}

void UpdateCalls::application(Exchange& exchange)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    exchange.replyJson(200, QJsonDocument(QJsonObject{
                                {QStringLiteral("version"), m_version},
                                {QStringLiteral("url"), exchange.publicBase() + QStringLiteral("files/") + installerName()}}));
}

void UpdateCalls::advertisement(Exchange& exchange)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const QString file = m_offerAd ? exchange.publicBase() + QStringLiteral("files/") + adName() : QString();
    const QString link = m_adLink.isEmpty() ? exchange.publicBase() + QStringLiteral("offer") : m_adLink;
    exchange.replyJson(200, QJsonDocument(QJsonObject{{QStringLiteral("file"), file}, {QStringLiteral("link"), link}}));
}

void UpdateCalls::file(Exchange& exchange)
{
    const QString name = exchange.match(1);
    ServedFile served;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!lookUp(name, &served)) {
            exchange.refuse(404, QStringLiteral("no file '%1'").arg(name));
            return;
        }
    }
    exchange.replyBytes(200, served.bytes, served.contentType);
}

void UpdateCalls::offerPage(Exchange& exchange)
{
    exchange.replyBytes(200,
                        QByteArrayLiteral("<!DOCTYPE html><html><head><title>Offer</title></head>"
                                          "<body><h1>Kestravin</h1><p>The advertised offer of the simulated back-end.</p>"
                                          "</body></html>"),
                        "text/html; charset=utf-8");
}

void UpdateCalls::changeApplication(Exchange& exchange)
{
    const QString version = QJsonDocument::fromJson(exchange.body()).object().value(QStringLiteral("version")).toString();
    if (version.isEmpty()) {
        exchange.refuse(400, QStringLiteral("expected {\"version\": \"...\"}"));
        return;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_version = version;
    Log::info(QStringLiteral("application version offered is now %1").arg(version));
    exchange.replyJson(200, QJsonDocument(QJsonObject{{QStringLiteral("version"), m_version},
                                                      {QStringLiteral("installer"), installerName()}}));
}

// {"variant": n} changes the generated picture (and so its MD5); {"offer": false} makes the
// answer's "file" empty.
void UpdateCalls::changeAdvertisement(Exchange& exchange)
{
    const QJsonObject object = QJsonDocument::fromJson(exchange.body()).object();
    const QJsonValue variant = object.value(QStringLiteral("variant"));
    const QJsonValue offer = object.value(QStringLiteral("offer"));
    if ((!variant.isUndefined() && (!variant.isDouble() || variant.toInt() < 1))
        || (!offer.isUndefined() && !offer.isBool()) || (variant.isUndefined() && offer.isUndefined())) {
        exchange.refuse(400, QStringLiteral("expected {\"variant\": n >= 1} and/or {\"offer\": true|false}"));
        return;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    if (variant.isDouble()) {
        m_adVariant = variant.toInt();
        m_adPictureName.clear(); // a picture given on the command line gives way to the variants
        m_adPicture.clear();
    }
    if (offer.isBool())
        m_offerAd = offer.toBool();
    Log::info(QStringLiteral("advertisement is now %1").arg(m_offerAd ? adName() : QStringLiteral("not offered")));
    exchange.replyJson(200, QJsonDocument(QJsonObject{{QStringLiteral("offer"), m_offerAd},
                                                      {QStringLiteral("file"), adName()}}));
}

QString UpdateCalls::installerName() const
{
    return m_installerName.isEmpty() ? QStringLiteral("Kestravin_Setup_%1.sh").arg(m_version) : m_installerName;
}

QString UpdateCalls::adName() const
{
    return m_adPictureName.isEmpty() ? QStringLiteral("ad-%1.png").arg(m_adVariant) : m_adPictureName;
}

bool UpdateCalls::lookUp(const QString& name, ServedFile* file) const
{
    if (name == installerName()) {
        file->bytes = m_installer;
        return true;
    }
    if (name == adName()) {
        file->bytes = m_adPictureName.isEmpty() ? PictureMaker::advertisementPng(m_adVariant) : m_adPicture;
        file->contentType = pictureType(name);
        return true;
    }
    return false;
}

} // namespace Velmora::BackendSim
