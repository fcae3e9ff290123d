#pragma once

#include "Code.pb.h"

namespace Velmora::Daemon::Boot {

// Codes of a `MigrationBootability` answer. The program acts only on success; any other it shows
// as a number in its failure text, so each step that can go wrong has a number of its own that an
// administrator can match with the service's log.
enum BootabilityCode : int {
    Success = Velmora::Message::SUCCESS,
    Canceled = Velmora::Message::CANCELED,
    Failed = Velmora::Message::FAILED,                  // the private mount folder could not be made
    InvalidRequest = Velmora::Message::INVALID_REQUEST, // no partitions paired, or the OS partition among none
    NotFound = Velmora::Message::NOT_FOUND,             // a named device is not a block device (any more)
    MountFailed = 8,         // the new system or its /boot partitions could not be mounted
    NoFstab = 9,             // the OS partition holds no /etc/fstab: not a system this service knows
    TableWriteFailed = 10,   // /etc/fstab or /etc/crypttab could not be rewritten
    NoGrub = 11,             // the new system has no GRUB for its boot style
    GrubInstallFailed = 12,  // grub-install failed or timed out
    GrubConfigFailed = 13,   // update-grub (grub-mkconfig) failed or timed out
    NotUefiHere = 14,        // this machine did not start by UEFI: no boot entry can be written
    EfiToolMissing = 15,     // efibootmgr is not installed here
    EfiEntryFailed = 16,     // efibootmgr failed or timed out
    UnmountFailed = 17,      // something stayed mounted after the work
    GrubMenuByDevicePath = 18, // the menu names the new root by this machine's device path, not its UUID
};

} // namespace Velmora::Daemon::Boot
