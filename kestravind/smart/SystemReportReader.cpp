#include "SystemReportReader.h"

#include "FactFile.h"
#include "TrimState.h"

#include <QDir>
#include <QFileInfo>
#include <QList>

#include <algorithm>

#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <utility>
#include <vector>

namespace Velmora::Daemon::Smart {

using Velmora::Message::SystemSummary;

namespace {

constexpr qint64 CpuInfoLimit = 4 * 1024 * 1024; // a few hundred cores with all their flags

// A "Key: value" line of procfs, such as "MemTotal:  16314532 kB", as its first number.
quint64 procNumber(const QByteArray& text, const QByteArray& key)
{
    for (const QByteArray& line : text.split('\n')) {
        if (line.startsWith(key) && line.size() > key.size() && line.at(key.size()) == ':')
            return line.mid(key.size() + 1).trimmed().split(' ').value(0).toULongLong();
    }
    return 0;
}

// os-release values are shell words: quoted, with backslash escapes.
QString osReleaseValue(const QByteArray& text, const QByteArray& key)
{
    for (const QByteArray& line : text.split('\n')) {
        if (!line.startsWith(key + '='))
            continue;
        QByteArray value = line.mid(key.size() + 1).trimmed();
        if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
            value = value.mid(1, value.size() - 2);
        QByteArray unescaped;
        for (int i = 0; i < value.size(); ++i) {
            if (value.at(i) == '\\' && i + 1 < value.size())
                ++i;
            unescaped += value.at(i);
        }
        return QString::fromUtf8(unescaped);
    }
    return {};
}

// The processor architecture numbers the summary uses (those of the program's home platform).
quint32 architectureNumber(const QString& machine)
{
    if (machine == QLatin1String("x86_64"))
        return 9;
    if (machine == QLatin1String("aarch64"))
        return 12;
    if (machine.startsWith(QLatin1String("arm")))
        return 5;
    if (machine.size() == 4 && machine.startsWith(QLatin1Char('i')) && machine.endsWith(QLatin1String("86")))
        return 0;
    return 0xFFFF; // unknown
}

QString userName(uid_t uid)
{
    long size = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? size_t(size) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(uid, &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return QString::number(uid);
    return QString::fromLocal8Bit(found->pw_name);
}

} // namespace

KernelIdentity KernelIdentity::current()
{
    utsname names{};
    if (uname(&names) != 0)
        return {};
    return {QString::fromLatin1(names.machine), QString::fromLatin1(names.release)};
}

SystemReportReader::SystemReportReader(QString root, KernelIdentity kernel)
    : m_root(rootPrefix(root))
    , m_kernel(std::move(kernel))
{
}

SystemSummary SystemReportReader::read(uid_t peerUid) const
{
    SystemSummary summary;
    const QString dmi = m_root + QStringLiteral("/sys/class/dmi/id/");
    summary.set_computermanufacturer(readFactText(dmi + QStringLiteral("sys_vendor")).toStdString());
    summary.set_computermodel(readFactText(dmi + QStringLiteral("product_name")).toStdString());
    readBoard(&summary);
    auto* bios = summary.mutable_biosinfo();
    bios->set_version(readFactText(dmi + QStringLiteral("bios_version")).toStdString());
    bios->set_isuefi(QFileInfo(m_root + QStringLiteral("/sys/firmware/efi")).isDir());
    readMemory(&summary);
    readOperatingSystem(peerUid, &summary);
    readProcessor(&summary);
    return summary;
}

void SystemReportReader::readBoard(SystemSummary* summary) const
{
    const QString dmi = m_root + QStringLiteral("/sys/class/dmi/id/");
    auto* board = summary->mutable_baseboardinfo();
    board->set_manufacturer(readFactText(dmi + QStringLiteral("board_vendor")).toStdString());
    board->set_product(readFactText(dmi + QStringLiteral("board_name")).toStdString());
    board->set_version(readFactText(dmi + QStringLiteral("board_version")).toStdString());
    board->set_ahcienabled(ahciEnabled());
    board->set_trimenabled(TrimState(m_root.isEmpty() ? QStringLiteral("/") : m_root).read().trimEnabled());
}

void SystemReportReader::readMemory(SystemSummary* summary) const
{
    const QByteArray memory = readFactFile(m_root + QStringLiteral("/proc/meminfo"));
    const QByteArray self = readFactFile(m_root + QStringLiteral("/proc/self/status"));
    auto* info = summary->mutable_memoryinfo();
    info->set_totalmemorysize(procNumber(memory, "MemTotal") * 1024);
    info->set_memoryavailable(procNumber(memory, "MemAvailable") * 1024);
    info->set_memoryusedbyservice(procNumber(self, "VmRSS") * 1024);
}

void SystemReportReader::readProcessor(SystemSummary* summary) const
{
    const QByteArray cpus = readFactFile(m_root + QStringLiteral("/proc/cpuinfo"), CpuInfoLimit);
    auto* processor = summary->mutable_processorinfo();
    quint32 count = 0;
    for (const QByteArray& line : cpus.split('\n')) {
        if (line.startsWith("processor") && line.contains(':'))
            ++count;
        else if (processor->name().empty() && line.startsWith("model name") && line.contains(':'))
            processor->set_name(line.mid(line.indexOf(':') + 1).trimmed().toStdString());
    }
    processor->set_corenumber(count);
    processor->set_architecture(architectureNumber(m_kernel.machine));
}

void SystemReportReader::readOperatingSystem(uid_t peerUid, SystemSummary* summary) const
{
    QByteArray release = readFactFile(m_root + QStringLiteral("/etc/os-release"));
    if (release.isEmpty())
        release = readFactFile(m_root + QStringLiteral("/usr/lib/os-release"));
    auto* os = summary->mutable_operatingsysteminfo();
    os->set_name(osReleaseValue(release, "PRETTY_NAME").toStdString());
    os->set_architecture(m_kernel.machine.toStdString());
    os->set_version(m_kernel.release.toStdString());
    os->set_windowsdirectory("/");
    os->set_user(userName(peerUid).toStdString());
    os->set_isuseradmin(peerUid == 0);
}

bool SystemReportReader::ahciEnabled() const
{
    // The ahci driver binds SATA controllers in AHCI mode only; its folder lists them by PCI address.
    const QDir driver(m_root + QStringLiteral("/sys/bus/pci/drivers/ahci"));
    const QStringList entries = driver.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    return std::any_of(entries.begin(), entries.end(),
                       [](const QString& entry) { return entry.count(QLatin1Char(':')) == 2; });
}

} // namespace Velmora::Daemon::Smart
