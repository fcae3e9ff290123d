#pragma once

#include "DriveCatalogue.h"
#include "Exchange.h"

namespace Velmora::BackendSim {

// GET "supported-models" lists the catalogue; GET "firmware?model=..&currentFirmware=.." names
// the newest firmware of the drive's line, echoing model and firmware as asked, since the echo
// is all that ties the answer to a drive on the client's side. An unknown model is 404.
class DriveCalls {
public:
    explicit DriveCalls(const DriveCatalogue& catalogue);
    void addRoutes(Router& router);

private:
    void supportedModels(Exchange& exchange);
    void firmware(Exchange& exchange);
    void firmwarePage(Exchange& exchange);

    const DriveCatalogue& m_catalogue;
};

} // namespace Velmora::BackendSim
