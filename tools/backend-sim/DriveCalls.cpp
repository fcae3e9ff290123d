#include "DriveCalls.h"

#include "Log.h"

#include <QJsonObject>
#include <QUrl>

namespace Velmora::BackendSim {

DriveCalls::DriveCalls(const DriveCatalogue& catalogue)
    : m_catalogue(catalogue)
{
}

void DriveCalls::addRoutes(Router& router)
{
    router.route("GET", QStringLiteral("supported-models"), QStringLiteral("supported-models"), Access::WithSession,
                 [this](Exchange& exchange) { supportedModels(exchange); });
    router.route("GET", QStringLiteral("firmware"), QStringLiteral("firmware"), Access::WithSession,
                 [this](Exchange& exchange) { firmware(exchange); });
    // The page that the program hands to the user's browser.
    router.route("GET", QStringLiteral("firmware-notes"), QStringLiteral("firmware-notes/([A-Za-z0-9._-]+)"),
                 Access::Open, [this](Exchange& exchange) { firmwarePage(exchange); });
}

void DriveCalls::supportedModels(Exchange& exchange)
{
    exchange.replyJson(200, QJsonDocument(m_catalogue.supportedModels()));
}

void DriveCalls::firmware(Exchange& exchange)
{
    const QString model = exchange.query("model");
    const QString currentFirmware = exchange.query("currentFirmware");
    if (model.isEmpty() || currentFirmware.isEmpty()) {
        exchange.refuse(400, QStringLiteral("firmware needs the query items \"model\" and \"currentFirmware\""));
        return;
    }
    const DriveCatalogue::Entry* entry = m_catalogue.find(model, currentFirmware);
    if (!entry) {
        exchange.refuse(404, QStringLiteral("no firmware known for model '%1'").arg(model));
        return;
    }
    Log::info(QStringLiteral("firmware for '%1' at %2: newest %3").arg(model, currentFirmware, entry->newestFirmware));
    const QString page = exchange.publicBase() + QStringLiteral("firmware-notes/")
                         + QString::fromLatin1(QUrl::toPercentEncoding(entry->model + QLatin1Char('-') + entry->newestFirmware));
    exchange.replyJson(200, QJsonDocument(QJsonObject{{QStringLiteral("model"), model},
                                                      {QStringLiteral("currentFirmware"), currentFirmware},
                                                      {QStringLiteral("version"), entry->newestFirmware},
                                                      {QStringLiteral("url"), page}}));
}

void DriveCalls::firmwarePage(Exchange& exchange)
{
    const QString name = exchange.match(1).toHtmlEscaped();
    const QString page = QStringLiteral("<!DOCTYPE html><html><head><title>Firmware %1</title></head>"
                                        "<body><h1>Firmware %1</h1><p>Release notes of the simulated back-end."
                                        "</p></body></html>")
                             .arg(name);
    exchange.replyBytes(200, page.toUtf8(), "text/html; charset=utf-8");
}

} // namespace Velmora::BackendSim
