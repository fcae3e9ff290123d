#pragma once

#include "Code.pb.h"

#include <QString>

namespace Velmora::Daemon::Migration {

// Why a disk may not be written, as the answer's code and a line for the log.
struct Refusal {
    Velmora::Message::Code code = Velmora::Message::SUCCESS;
    QString reason;

    explicit operator bool() const { return code != Velmora::Message::SUCCESS; }
};

// Decides, from the facts of this very moment, whether a whole disk (kernel name) may be written
// by a migration: never the disk of the running system or of the source, never a read-only one,
// never one with anything mounted, swapped on or stacked on top of it.
Refusal checkDestination(const QString& disk, const QString& sourceDisk);

} // namespace Velmora::Daemon::Migration
