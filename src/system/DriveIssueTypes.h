#pragma once

#include <QMetaType>
#include <QtGlobal>

namespace Velmora::System {

// What a drive's health is judged by.
enum DriveIssueType { LifeRemaining = 0, FreeSpace = 1, BadSectors = 2, SATASpeedLimit = 3, FirmwareUpdate = 4 };

// ActionNeeded is the worst; a smaller value is a worse state.
enum DriveIssueSeverity { ActionNeeded = 0, OK = 1, Good = 2 };

// The two SATA link fields of a drive, carried in a QVariant to the speed-limit issue.
struct SATASpeedCapabilities {
    quint32 supported = 0;
    quint32 current = 0;
    bool operator==(const SATASpeedCapabilities& other) const
    {
        return supported == other.supported && current == other.current;
    }
};

} // namespace Velmora::System

Q_DECLARE_METATYPE(Velmora::System::DriveIssueType)
Q_DECLARE_METATYPE(Velmora::System::DriveIssueSeverity)
Q_DECLARE_METATYPE(Velmora::System::SATASpeedCapabilities)
