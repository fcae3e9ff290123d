#pragma once

#include <QString>

namespace Velmora::Daemon::Boot {

enum class BootStyle { Bios, Uefi };

// Whether this machine was started by UEFI firmware: only then does it have boot entries to write.
bool machineStartedByUefi(const QString& firmwareFolder = QStringLiteral("/sys/firmware/efi"));

// An EFI system partition by its GPT type GUID or its MBR type.
bool isEfiSystemPartition(const QString& gptType, quint32 mbrType);

// How the source system starts: where it is the running system, as this machine started; else an
// EFI system partition on its disk means UEFI, and none means BIOS.
BootStyle sourceBootStyle(bool sourceIsRunningSystem, bool machineIsUefi, bool sourceHasEfiSystemPartition);

} // namespace Velmora::Daemon::Boot
