#include "update/FirmwareUpdate.h"

#include "communicationweb/FirmwareResponse.h"
#include "logger/Logger.h"
#include "rest/RestResponse.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"

namespace Velmora::Update {

FirmwareUpdate::FirmwareUpdate(System::System* system, REST::RestClient* restClient,
    CommunicationWeb::TarnAuthorizationService* authorizationService, QObject* parent)
    : TarnWebHandler(restClient, authorizationService, parent)
    , m_system(system)
{
    setRetransmissionInterval(RetransmissionInterval);
}

void FirmwareUpdate::checkForUpdates()
{
    // Questions of an older check that never got through are stale by now.
    clearRetransmissionQueue();
    Logger::debug(QString(), QStringLiteral("Refreshing firmware update information for all drives"));
    const QList<int> ids = m_system->driveIds();
    for (int id : ids) {
        const System::Drive* drive = m_system->drive(id);
        if (drive && System::SupportedDrivesManager::isSupportedDrive(*drive))
            askFor(*drive);
    }
}

void FirmwareUpdate::askFor(const System::Drive& drive)
{
    Logger::debug(QString(), QStringLiteral("Requesting newest firmware version from server for drive: %1").arg(drive.model()));
    REST::RestRequest request(REST::GET, QStringLiteral("firmware"));
    request.addQueryParameter(QStringLiteral("model"), drive.model());
    request.addQueryParameter(QStringLiteral("currentFirmware"), drive.firmwareVersion());
    sendRequest(request);
}

bool FirmwareUpdate::onRestResponseReceived(REST::RestResponse* response)
{
    if (TarnWebHandler::onRestResponseReceived(response)) {
        delete response;
        return true;
    }
    if (response)
        readAnswer(*response);
    emit firmwareUpdateCheckFinished();
    delete response;
    return true;
}

void FirmwareUpdate::readAnswer(const REST::RestResponse& response)
{
    if (!response.isSuccessful()) {
        if (response.status() == 404)
            Logger::warning(QString(), QStringLiteral("Requested firmware drive model not supported by server"));
        else
            Logger::error(QString(), QStringLiteral("Server did not respond correctly to firmware request: %1").arg(response.status()));
        return;
    }
    Logger::info(QString(), QStringLiteral("Firmware response received"));
    CommunicationWeb::FirmwareResponse answer;
    if (!answer.fromJson(response.content())) {
        Logger::error(QString(), QStringLiteral("Unable to parse server firmware response: %1").arg(response.content()));
        return;
    }
    Logger::info(QString(), QStringLiteral("Firmware response: model %1, current firmware: %2, version %3, url %4")
                                .arg(answer.model(), answer.currentFirmware(), answer.version(), answer.url()));
    // Answers carry no reference of their own: the echoed model and firmware tie them to drives.
    const QList<System::Drive*> drives = m_system->findDrives(answer.model(), answer.currentFirmware());
    if (drives.isEmpty()) {
        Logger::error(QString(), QStringLiteral("Firmware response received for unexpected drive model: %1 and firmware: %2")
                                     .arg(answer.model(), answer.currentFirmware()));
    }
    for (System::Drive* drive : drives) {
        drive->setNewestFirmwareVersion(answer.version());
        drive->setNewestFirmwareUrl(answer.url());
    }
}

} // namespace Velmora::Update
