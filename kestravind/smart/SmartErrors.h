#pragma once

#include "Smart.pb.h"

namespace Velmora::Daemon::Smart {

// Error codes of a `Smart` answer. The program names the first three; the others it logs as an
// unknown code, which is all it can do with them, but they tell an administrator reading both
// logs why a drive shows no values.
enum SmartError : int {
    Success = Velmora::Message::Smart::SUCCESS,
    NoDrive = Velmora::Message::Smart::NO_DRIVE,         // no such device (any more)
    NoSmart = Velmora::Message::Smart::NO_ATTRIBUTE,     // the device has no SMART, or not the attribute asked for
    ToolMissing = 3,                                     // smartctl is not installed
    ToolFailed = 4,                                      // smartctl crashed or said nothing readable
    ToolTimedOut = 5,                                    // smartctl did not finish within the time limit
};

} // namespace Velmora::Daemon::Smart
