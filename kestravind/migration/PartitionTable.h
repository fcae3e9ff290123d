#pragma once

#include "PartitionInfo.pb.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

namespace Velmora::Daemon::Migration {

// The partition table written on a disk, as `sfdisk --json` reads it; positions in bytes.
struct TableEntry {
    quint32 number = 0;
    quint64 start = 0;
    quint64 size = 0;
    bool extended = false;
    bool logical = false;
};

struct TableLayout {
    bool gpt = false;
    quint32 sectorSize = 512;
    quint64 firstUsable = 0; // the first byte a partition may use
    quint64 usableEnd = 0; // one past the last byte a partition may use
    QVector<TableEntry> entries;
};

std::optional<TableLayout> parseLayout(const QByteArray& sfdiskJson, quint64 diskBytes);

// Why `wanted` cannot be added to the table as it stands; empty when it fits.
QString placementProblem(const TableLayout& layout, const Velmora::Message::PartitionInfo& wanted);

// The line of an sfdisk script that adds `wanted`; empty, with `problem` set, when a field of the
// request cannot be written faithfully.
QByteArray scriptLine(const TableLayout& layout, const Velmora::Message::PartitionInfo& wanted, QString* problem);

} // namespace Velmora::Daemon::Migration
