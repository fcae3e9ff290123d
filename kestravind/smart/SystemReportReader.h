#pragma once

#include "SystemSummary.pb.h"

#include <QString>

#include <sys/types.h>

namespace Velmora::Daemon::Smart {

// The running kernel as uname(2) names it; a value so that tests can fix it.
struct KernelIdentity {
    QString machine; // "x86_64", "aarch64"...
    QString release;

    static KernelIdentity current();
};

// Answers `SystemReport` with the machine's `SystemSummary`: maker and model and board from the
// DMI tables, firmware mode, memory, processor, operating system, and the TRIM and AHCI state.
//
// Serial numbers of the machine, board and firmware stay empty: the kernel lets only root read
// them, and this summary goes to any local user who asks. The system directory is "/": the
// program marks as the system's the partition whose place is a prefix of it, and the root file
// system is the one mounted at "/".
class SystemReportReader
{
public:
    explicit SystemReportReader(QString root = QStringLiteral("/"), KernelIdentity kernel = KernelIdentity::current());

    // `peerUid` is the asking user: the summary names them and whether they are root.
    Velmora::Message::SystemSummary read(uid_t peerUid) const;

private:
    void readBoard(Velmora::Message::SystemSummary* summary) const;
    void readMemory(Velmora::Message::SystemSummary* summary) const;
    void readProcessor(Velmora::Message::SystemSummary* summary) const;
    void readOperatingSystem(uid_t peerUid, Velmora::Message::SystemSummary* summary) const;
    bool ahciEnabled() const;

    QString m_root;
    KernelIdentity m_kernel;
};

} // namespace Velmora::Daemon::Smart
