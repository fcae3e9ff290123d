#pragma once

#include "communicationweb/TarnWebHandler.h"
#include "update/UpdateInterface.h"

namespace Velmora::System {
class Drive;
class System;
}

namespace Velmora::Update {

// Asks the back-end for the newest firmware of each of the maker's drives in the machine and
// stores the answer on the drives. Nothing is flashed here: the user follows the page the server
// names.
class FirmwareUpdate : public CommunicationWeb::TarnWebHandler, public UpdateInterface
{
    Q_OBJECT

public:
    static constexpr int RetransmissionInterval = 60000;

    FirmwareUpdate(System::System* system, REST::RestClient* restClient,
        CommunicationWeb::TarnAuthorizationService* authorizationService, QObject* parent = nullptr);

    void checkForUpdates() override;

signals:
    // After every final answer to a drive's question, whatever it said.
    void firmwareUpdateCheckFinished();

private slots:
    bool onRestResponseReceived(REST::RestResponse* response) override;

private:
    void askFor(const System::Drive& drive);
    void readAnswer(const REST::RestResponse& response);

    System::System* m_system;
};

} // namespace Velmora::Update
