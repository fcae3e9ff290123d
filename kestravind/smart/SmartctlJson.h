#pragma once

#include "Smart.pb.h"

#include <QByteArray>
#include <QString>

namespace Velmora::Daemon::Smart {

// Turns what `smartctl --json -a` printed into a `Smart` answer: the ATA attribute table as it
// stands, or an NVMe health log translated into the attribute ids the program decodes.
//
// NVMe has no attribute table. Its health log is mapped onto the ids whose meaning it matches
// exactly, in the form the default decoding expects:
//   9   power_on_hours, 12 power_cycles, 194 temperature (degrees Celsius in byte 0),
//   231 remaining life in percent (100 minus percentage_used, never below 0),
//   241 data_units_written in GiB (a data unit is 512,000 bytes).
// It has no reallocated sector count and no erase counts, so ids 5, 173 and friends stay absent:
// media errors are unrecovered reads, not remapped sectors, and passing them off as such would
// raise health warnings the drive does not deserve.
class SmartctlJson
{
public:
    // `exitStatus` is smartctl's: only its bits are logged, the JSON decides. `device` names the
    // drive in log lines.
    static Velmora::Message::Smart toSmart(const QByteArray& output, int exitStatus, const QString& device);
};

} // namespace Velmora::Daemon::Smart
