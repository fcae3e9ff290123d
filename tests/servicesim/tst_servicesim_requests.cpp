// The simulated service answering the program's requests, through the program's own pipe client
// and dispatcher: handshake, drive list, SMART, speed test, TRIM, file categories, filters, the
// migration chain, log files, and the answer faults it injects on request.

#include "ServiceLink.h"
#include "SimulatorProcess.h"

#include "support/TestEnvironment.h"

#include "CopyLogFiles.pb.h"
#include "DiskPerformance.pb.h"
#include "FileList.pb.h"
#include "FileTypeStructure.pb.h"
#include "Migration.pb.h"
#include "Smart.pb.h"
#include "SmartRequest.pb.h"
#include "SystemInfo.pb.h"
#include "SystemSummary.pb.h"
#include "SystemTrimCommand.pb.h"
#include "Version.pb.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>

#include <cmath>
#include <memory>

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

const char* const EfiGuid = "c12a7328-f81f-11d2-ba4b-00a0c93ec93b";
const char* const ReservedGuid = "e3c9e316-0b5c-4db8-817d-f92df00215ae";
const char* const RecoveryGuid = "de94bba4-06d1-4d40-a16a-bfd50179d6ac";
const char* const BasicDataGuid = "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7";
constexpr quint64 MiB = 1024 * 1024;
constexpr quint64 GiB = 1024 * MiB;

// Sizes as the scenario writes them ("6.4 GiB"), rounded to whole bytes.
quint64 gibibytes(double count)
{
    return quint64(std::llround(count * double(GiB)));
}

// The default machine's system drive, its Windows volume and the empty destination.
constexpr quint32 SystemDrive = 0;
constexpr quint32 WindowsPartition = 3;
constexpr quint32 EmptyDrive = 1;

struct Session {
    std::unique_ptr<SimulatorProcess> service;
    std::unique_ptr<ServiceLink> link;
};

Session startSession(const QStringList& arguments = {})
{
    Session session;
    session.service = std::make_unique<SimulatorProcess>(arguments);
    if (!session.service->start())
        return session;
    session.link = std::make_unique<ServiceLink>(session.service->name());
    if (!session.link->waitForConnection()) {
        qWarning() << "No connection to the service; connected:" << session.link->client.isConnected();
        session.link.reset();
    }
    return session;
}

Wire::SystemInfo systemInfo(ServiceLink& link)
{
    Wire::SystemInfo info;
    link.send(Message::SystemInfoRequest);
    link.take(Message::SystemInfo, &info);
    return info;
}

const Wire::PartitionInfo* findPartition(const Wire::SystemInfo_DriveInfo& drive, quint32 id)
{
    for (const Wire::PartitionInfo& partition : drive.partitions()) {
        if (partition.id() == id)
            return &partition;
    }
    return nullptr;
}

Wire::FileTypeStructureRequest categoryScan(quint32 driveId)
{
    // The program's rules, shortened to what the default machine holds.
    const QList<QPair<int, QPair<const char*, const char*>>> rules{
        {2, {".pdf,.docx,.xlsx,.pptx,.txt,.cpp,.h,.md", ""}},
        {5, {".jpg,.png,.heic,.cr2", ""}},
        {4, {".mp3,.flac", ""}},
        {3, {".mp4,.mov,.mkv,.webm", ""}},
        {0, {"", "Windows,swapfile.sys,pagefile.sys,hiberfil.sys,System Volume Information,Boot,EFI"}},
        {1, {"", "Program Files,Program Files (x86),ProgramData"}},
    };
    Wire::FileTypeStructureRequest request;
    request.set_driveid(driveId);
    request.set_action(Wire::FileTypeStructureRequest::Start);
    request.set_partitionid(-1);
    for (const auto& rule : rules) {
        auto* type = request.add_filetypes();
        type->set_id(quint32(rule.first));
        type->set_extensions(rule.second.first);
        type->set_paths(rule.second.second);
    }
    return request;
}

quint64 sizeOf(const Wire::FileTypeStructure& answer, quint32 id)
{
    for (const auto& type : answer.filetypes()) {
        if (type.id() == id)
            return type.size();
    }
    return 0;
}

quint64 sumOf(const Wire::FileTypeStructure& answer)
{
    quint64 sum = 0;
    for (const auto& type : answer.filetypes())
        sum += type.size();
    return sum;
}

} // namespace

class ServiceSimRequestsTest : public QObject
{
    Q_OBJECT

private slots:
    void versionHandshake_data();
    void versionHandshake();
    void defaultMachineDrives_data();
    void defaultMachineDrives();
    void systemSummaryNamesTheSystemVolume();
    void smartReadout_data();
    void smartReadout();
    void smartCountersGrowBetweenReadouts();
    void benchmarkRound_data();
    void benchmarkRound();
    void trimIsReadAndEnabled();
    void fileCategoryScanProgressesAndFinishes();
    void fileCategoryScanStops();
    void directoryListings_data();
    void directoryListings();
    void systemPaths_data();
    void systemPaths();
    void filteredSizeOfAVolume();
    void filteredSizeStops();
    void migrationChain();
    void migrationRefusals_data();
    void migrationRefusals();
    void copyIsCanceled();
    void clientsShareOneMachine();
    void logFilesAreCopied();
    void answerFaults_data();
    void answerFaults();
    void otherScenariosLoad_data();
    void otherScenariosLoad();
    void healthRulesAreVisible_data();
    void healthRulesAreVisible();
    void logicalPartitionsOnAnMbrDisk_data();
    void logicalPartitionsOnAnMbrDisk();
    void scenarioFromAFile();
};

void ServiceSimRequestsTest::versionHandshake_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");

    QTest::newRow("matches the program") << QStringList() << KESTRAVIN_VERSION_MAJOR << KESTRAVIN_VERSION_MINOR;
    QTest::newRow("another major version") << QStringList{"--service-version", "2.0.3"} << 2 << 0;
    QTest::newRow("through garbage and split frames")
        << QStringList{"--garbage", "7", "--split", "random", "--seed", "5"} << KESTRAVIN_VERSION_MAJOR
        << KESTRAVIN_VERSION_MINOR;
}

void ServiceSimRequestsTest::versionHandshake()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, major);
    QFETCH(int, minor);

    Session session = startSession(arguments);
    QVERIFY(session.link);
    session.link->send(Message::Version);
    Wire::Version version;
    QVERIFY(session.link->take(Message::Version, &version));
    QCOMPARE(int(version.major()), major);
    QCOMPARE(int(version.minor()), minor);

    // A whole drive list makes it through the same wire.
    QCOMPARE(systemInfo(*session.link).drives_size(), 4);
}

void ServiceSimRequestsTest::defaultMachineDrives_data()
{
    QTest::addColumn<quint32>("driveId");
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("maker");
    QTest::addColumn<int>("style");
    QTest::addColumn<QStringList>("partitions"); // GPT type, or MBR type, and letter of each

    QTest::newRow("system SSD") << 0u << "SATA" << true << int(Wire::SystemInfo_DriveInfo::GPT)
                                << QStringList{EfiGuid, ReservedGuid, QString(BasicDataGuid) + " C:", RecoveryGuid};
    QTest::newRow("empty NVMe SSD") << 1u << "NVMe" << true << int(Wire::SystemInfo_DriveInfo::RAW) << QStringList();
    QTest::newRow("other maker's HDD") << 2u << "SATA" << false << int(Wire::SystemInfo_DriveInfo::GPT)
                                       << QStringList{ReservedGuid, QString(BasicDataGuid) + " D:"};
    QTest::newRow("USB stick") << 3u << "USB" << false << int(Wire::SystemInfo_DriveInfo::MBR) << QStringList{"12 E:"};
}

void ServiceSimRequestsTest::defaultMachineDrives()
{
    QFETCH(quint32, driveId);
    QFETCH(QString, type);
    QFETCH(bool, maker);
    QFETCH(int, style);
    QFETCH(QStringList, partitions);

    Session session = startSession();
    QVERIFY(session.link);
    const Wire::SystemInfo info = systemInfo(*session.link);
    QCOMPARE(info.drives_size(), 4);
    const Wire::SystemInfo_DriveInfo& drive = info.drives(int(driveId));
    QCOMPARE(drive.driveid(), driveId);
    QCOMPARE(QString::fromStdString(drive.type()), type);
    QCOMPARE(QString::fromStdString(drive.model()).contains("BRANTEL"), maker);
    QCOMPARE(int(drive.partitionformatstyle()), style);
    QVERIFY(!drive.serial().empty());

    QStringList seen;
    quint64 previousEnd = MiB;
    for (const Wire::PartitionInfo& partition : drive.partitions()) {
        const QString kind = partition.type() == Wire::PartitionInfo::GPT ? QString::fromStdString(partition.gpttype())
                                                                         : QString::number(partition.mbrtype());
        seen << (partition.letter().empty() ? kind : kind + " " + QString::fromStdString(partition.letter()));
        // Partitions lie one after the other, MiB-aligned, within the drive, no fuller than they are.
        QVERIFY(partition.offset() >= previousEnd);
        QCOMPARE(partition.offset() % MiB, 0ull);
        QVERIFY(partition.offset() + partition.size() <= drive.size());
        QVERIFY(partition.used() <= partition.size());
        previousEnd = partition.offset() + partition.size();
    }
    QCOMPARE(seen, partitions);
}

void ServiceSimRequestsTest::systemSummaryNamesTheSystemVolume()
{
    Session session = startSession();
    QVERIFY(session.link);
    session.link->send(Message::SystemReport);
    Wire::SystemSummary summary;
    QVERIFY(session.link->take(Message::SystemReport, &summary));
    QVERIFY(QString::fromStdString(summary.operatingsysteminfo().windowsdirectory()).startsWith("C:"));
    QVERIFY(QString::fromStdString(summary.operatingsysteminfo().architecture()).contains("64"));
    QVERIFY(summary.baseboardinfo().ahcienabled());
    QVERIFY(summary.biosinfo().isuefi());
    QVERIFY(summary.memoryinfo().memoryavailable() < summary.memoryinfo().totalmemorysize());
}

void ServiceSimRequestsTest::smartReadout_data()
{
    QTest::addColumn<quint32>("driveId");
    QTest::addColumn<int>("error");
    QTest::addColumn<QList<quint32>>("ids"); // attributes that must be there

    QTest::newRow("SATA SSD") << 0u << 0 << QList<quint32>{5, 9, 12, 173, 194, 231, 241};
    QTest::newRow("NVMe SSD") << 1u << 0 << QList<quint32>{5, 9, 12, 165, 167, 169, 194, 241};
    QTest::newRow("HDD") << 2u << 0 << QList<quint32>{5, 9, 12, 194};
    QTest::newRow("USB stick") << 3u << int(Wire::Smart::NO_ATTRIBUTE) << QList<quint32>();
    QTest::newRow("unknown drive") << 42u << int(Wire::Smart::NO_DRIVE) << QList<quint32>();
}

void ServiceSimRequestsTest::smartReadout()
{
    QFETCH(quint32, driveId);
    QFETCH(int, error);
    QFETCH(QList<quint32>, ids);

    Session session = startSession();
    QVERIFY(session.link);
    Wire::SmartRequest request;
    request.set_driveid(driveId);
    request.set_allattributes(true);
    session.link->send(Message::SmartRequest, request);
    Wire::Smart smart;
    QVERIFY(session.link->take(Message::Smart, &smart));
    QCOMPARE(int(smart.errorcode()), error);
    QCOMPARE(smart.driveid(), driveId);

    QList<quint32> present;
    for (const auto& attribute : smart.attributes()) {
        present << attribute.id();
        // Six raw bytes as hexadecimal text.
        const QByteArray data = QByteArray::fromStdString(attribute.data());
        QCOMPARE(data.size(), 12);
        QCOMPARE(QByteArray::fromHex(data).toHex().toUpper(), data.toUpper());
    }
    for (quint32 id : ids)
        QVERIFY2(present.contains(id), qPrintable(QString::number(id)));
    if (ids.isEmpty())
        QCOMPARE(smart.attributes_size(), 0);
}

void ServiceSimRequestsTest::smartCountersGrowBetweenReadouts()
{
    Session session = startSession();
    QVERIFY(session.link);
    auto rawOf = [](const Wire::Smart& smart, quint32 id) {
        for (const auto& attribute : smart.attributes()) {
            if (attribute.id() == id) {
                QByteArray bytes = QByteArray::fromHex(QByteArray::fromStdString(attribute.data()));
                quint64 raw = 0;
                for (int i = bytes.size() - 1; i >= 0; --i)
                    raw = (raw << 8) | static_cast<uchar>(bytes.at(i));
                return raw;
            }
        }
        return ~0ull;
    };
    Wire::SmartRequest request;
    request.set_driveid(SystemDrive);
    request.set_allattributes(true);
    Wire::Smart first;
    Wire::Smart second;
    session.link->send(Message::SmartRequest, request);
    QVERIFY(session.link->take(Message::Smart, &first));
    session.link->send(Message::SmartRequest, request);
    QVERIFY(session.link->take(Message::Smart, &second));
    // Written data and power-on hours move on; the temperature as read is the table's.
    QVERIFY(rawOf(second, 241) > rawOf(first, 241));
    QVERIFY(rawOf(second, 9) > rawOf(first, 9));
    QCOMPARE(rawOf(second, 5), rawOf(first, 5));
    QCOMPARE(rawOf(first, 194) & 0xFF, 33ull);

    // One attribute alone, and one the drive does not have.
    request.set_allattributes(false);
    request.set_attributeid(194);
    session.link->send(Message::SmartRequest, request);
    Wire::Smart single;
    QVERIFY(session.link->take(Message::Smart, &single));
    QCOMPARE(single.attributes_size(), 1);
    QCOMPARE(single.attributes(0).id(), 194u);
    request.set_attributeid(99);
    session.link->send(Message::SmartRequest, request);
    QVERIFY(session.link->take(Message::Smart, &single));
    QCOMPARE(int(single.errorcode()), int(Wire::Smart::NO_ATTRIBUTE));
}

void ServiceSimRequestsTest::benchmarkRound_data()
{
    QTest::addColumn<quint32>("driveId");
    QTest::addColumn<int>("code");
    QTest::addColumn<double>("readMBps");
    QTest::addColumn<double>("writeMBps");

    QTest::newRow("SATA SSD") << 0u << 0 << 561.0 << 518.0;
    QTest::newRow("NVMe SSD") << 1u << 0 << 3480.0 << 3010.0;
    QTest::newRow("HDD") << 2u << 0 << 196.0 << 188.0;
    QTest::newRow("unknown drive") << 42u << int(Wire::NOT_FOUND) << 0.0 << 0.0;
}

void ServiceSimRequestsTest::benchmarkRound()
{
    QFETCH(quint32, driveId);
    QFETCH(int, code);
    QFETCH(double, readMBps);
    QFETCH(double, writeMBps);

    Session session = startSession({"--benchmark-ms", "120"});
    QVERIFY(session.link);
    Wire::DiskPerformanceRequest request;
    request.set_driveid(driveId);
    request.set_filesize(134217728);
    request.set_blocksize(4194304);

    for (int round = 0; round < 2; ++round) {
        const qint64 sentAt = ServiceLink::nowMs();
        session.link->send(Message::DiskBenchmarkRequest, request);
        QByteArray payload;
        qint64 receivedAt = 0;
        QVERIFY(session.link->take(Message::DiskBenchmarkResponse, &payload, 5000, &receivedAt));
        Wire::DiskPerformance answer;
        QVERIFY(answer.ParseFromArray(payload.constData(), payload.size()));
        QCOMPARE(int(answer.code()), code);
        QCOMPARE(answer.driveid(), driveId);
        if (code != 0)
            return;
        // A round takes its time, and the figures scatter a little around the drive's speed.
        QVERIFY2(receivedAt - sentAt >= 100, qPrintable(QString::number(receivedAt - sentAt)));
        QVERIFY(qAbs(answer.readspeed() / 1e6 - readMBps) < readMBps * 0.05);
        QVERIFY(qAbs(answer.writespeed() / 1e6 - writeMBps) < writeMBps * 0.05);
        QVERIFY(answer.randomreadspeed() > 0 && answer.randomreadspeed() < answer.readspeed());
    }
}

void ServiceSimRequestsTest::trimIsReadAndEnabled()
{
    Session session = startSession();
    QVERIFY(session.link);
    Wire::SystemTrimCommand command;
    Wire::SystemTrimCommand answer;
    session.link->send(Message::SystemTrimCommand, command);
    QVERIFY(session.link->take(Message::SystemTrimCommand, &answer));
    QCOMPARE(int(answer.code()), 0);
    QVERIFY(!answer.trimenabled());

    command.set_trimenabled(true);
    session.link->send(Message::SystemTrimCommand, command);
    QVERIFY(session.link->take(Message::SystemTrimCommand, &answer));
    QCOMPARE(int(answer.code()), 0);
    QVERIFY(answer.trimenabled());

    session.link->send(Message::SystemReport);
    Wire::SystemSummary summary;
    QVERIFY(session.link->take(Message::SystemReport, &summary));
    QVERIFY(summary.baseboardinfo().trimenabled());
}

void ServiceSimRequestsTest::fileCategoryScanProgressesAndFinishes()
{
    Session session = startSession({"--scan-steps", "5"});
    QVERIFY(session.link);
    const quint64 used = findPartition(systemInfo(*session.link).drives(0), WindowsPartition)->used();
    session.link->send(Message::FileTypeStructureReq, categoryScan(SystemDrive));

    QList<float> progress;
    Wire::FileTypeStructure report;
    do {
        QVERIFY(session.link->take(Message::FileCat, &report));
        QCOMPARE(report.driveid(), SystemDrive);
        progress << report.progress();
        QCOMPARE(int(report.code()), report.finished() ? 0 : 7);
    } while (!report.finished());
    QCOMPARE(progress.size(), 5);
    QVERIFY(std::is_sorted(progress.begin(), progress.end()));
    QCOMPARE(progress.last(), 1.0f);

    // Every byte of the system volume lands in one category, OTHER included.
    QCOMPARE(report.filetypes_size(), 7);
    QCOMPARE(sumOf(report), used);
    QVERIFY(sizeOf(report, 0) > 14 * GiB);  // the Windows directory, page and hibernation files
    QVERIFY(sizeOf(report, 1) > 25 * GiB);  // a game among the programs
    QVERIFY(sizeOf(report, 3) > 4 * GiB);   // holiday videos
    QVERIFY(sizeOf(report, 2) > 40 * MiB);  // documents
    QVERIFY(sizeOf(report, 4) > 60 * MiB);  // music
    QVERIFY(sizeOf(report, 5) > 20 * MiB);  // pictures
    QVERIFY(sizeOf(report, 6) > 1 * GiB);   // downloads and the rest

    // The finished scan stays for a report.
    Wire::FileTypeStructureRequest ask;
    ask.set_driveid(SystemDrive);
    ask.set_action(Wire::FileTypeStructureRequest::Report);
    session.link->send(Message::FileTypeStructureReq, ask);
    Wire::FileTypeStructure again;
    QVERIFY(session.link->take(Message::FileCat, &again));
    QVERIFY(again.finished());
    QCOMPARE(sumOf(again), used);

    // A stop after the end neither answers nor throws the result away.
    Wire::FileTypeStructureRequest stop;
    stop.set_driveid(SystemDrive);
    stop.set_action(Wire::FileTypeStructureRequest::Stop);
    session.link->send(Message::FileTypeStructureReq, stop);
    session.link->send(Message::FileTypeStructureReq, ask);
    QVERIFY(session.link->take(Message::FileCat, &again));
    QVERIFY(again.finished());
    QCOMPARE(session.link->pending(Message::FileCat), 0);
}

void ServiceSimRequestsTest::fileCategoryScanStops()
{
    Session session = startSession({"--scan-step-ms", "40", "--scan-steps", "50"});
    QVERIFY(session.link);
    session.link->send(Message::FileTypeStructureReq, categoryScan(SystemDrive));
    Wire::FileTypeStructure report;
    QVERIFY(session.link->take(Message::FileCat, &report));
    QCOMPARE(int(report.code()), 7);

    Wire::FileTypeStructureRequest stop;
    stop.set_driveid(SystemDrive);
    stop.set_action(Wire::FileTypeStructureRequest::Stop);
    session.link->send(Message::FileTypeStructureReq, stop);
    // Reports in flight may still come; then the scan is gone.
    do {
        QVERIFY(session.link->take(Message::FileCat, &report));
    } while (report.code() == 7);
    QCOMPARE(int(report.code()), int(Wire::NOT_FOUND));
    QTest::qWait(120);
    QCOMPARE(session.link->pending(Message::FileCat), 0);

    Wire::FileTypeStructureRequest ask;
    ask.set_driveid(SystemDrive);
    ask.set_action(Wire::FileTypeStructureRequest::Report);
    session.link->send(Message::FileTypeStructureReq, ask);
    QVERIFY(session.link->take(Message::FileCat, &report));
    QCOMPARE(int(report.code()), int(Wire::NOT_FOUND));
}

void ServiceSimRequestsTest::directoryListings_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("directories");
    QTest::addColumn<QStringList>("files");

    QTest::newRow("volume root")
        << "C:\\"
        << QStringList{"$Recycle.Bin", "Program Files", "Program Files (x86)", "ProgramData", "System Volume Information",
               "Users", "Windows"}
        << QStringList{"DumpStack.log.tmp", "hiberfil.sys", "pagefile.sys", "swapfile.sys"};
    QTest::newRow("deep, other case") << "c:\\users\\ALEX\\Music\\Hollow Pines\\" << QStringList()
                                      << QStringList{"01 - Northbound.flac", "02 - Tidewater.flac", "03 - Ember.mp3", "cover.jpg"};
    QTest::newRow("another drive") << "D:\\Videos\\" << QStringList{"drone"} << QStringList{"wedding-4k.mkv"};
    QTest::newRow("no such directory") << "C:\\Nowhere\\" << QStringList() << QStringList();
    QTest::newRow("no such volume") << "Q:\\" << QStringList() << QStringList();
}

void ServiceSimRequestsTest::directoryListings()
{
    QFETCH(QString, path);
    QFETCH(QStringList, directories);
    QFETCH(QStringList, files);

    Session session = startSession();
    QVERIFY(session.link);
    Wire::FileListRequest request;
    request.set_dirpath(path.toStdString());
    session.link->send(Message::FileListRequest, request);
    Wire::FileList list;
    QVERIFY(session.link->take(Message::FileList, &list));
    QCOMPARE(QString::fromStdString(list.path()), path);

    QStringList seenDirectories;
    QStringList seenFiles;
    for (const auto& entry : list.directories()) {
        seenDirectories << QString::fromStdString(entry.first);
        QVERIFY(entry.second > 0);
    }
    for (const auto& entry : list.files())
        seenFiles << QString::fromStdString(entry.first);
    seenDirectories.sort();
    seenFiles.sort();
    directories.sort();
    files.sort();
    QCOMPARE(seenDirectories, directories);
    QCOMPARE(seenFiles, files);
}

void ServiceSimRequestsTest::systemPaths_data()
{
    QTest::addColumn<quint32>("partitionId");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("systemPath");
    QTest::addColumn<QString>("ignoredPath");

    QTest::newRow("Windows volume") << WindowsPartition << 0 << "C:\\Windows" << "C:\\pagefile.sys";
    QTest::newRow("EFI partition") << 1u << 0 << QString() << QString();
    QTest::newRow("no such partition") << 42u << int(Wire::NOT_FOUND) << QString() << QString();
}

void ServiceSimRequestsTest::systemPaths()
{
    QFETCH(quint32, partitionId);
    QFETCH(int, code);
    QFETCH(QString, systemPath);
    QFETCH(QString, ignoredPath);

    Session session = startSession();
    QVERIFY(session.link);
    Wire::MigrationFilterSystemPaths request;
    request.set_driveid(SystemDrive);
    request.set_partitionid(partitionId);
    session.link->send(Message::MigrationFilterSystemPaths, request);
    Wire::MigrationFilterSystemPaths answer;
    QVERIFY(session.link->take(Message::MigrationFilterSystemPaths, &answer));
    QCOMPARE(int(answer.code()), code);
    QCOMPARE(answer.driveid(), SystemDrive);
    QCOMPARE(answer.partitionid(), partitionId);
    QStringList paths;
    QStringList ignored;
    for (const auto& path : answer.systempaths())
        paths << QString::fromStdString(path);
    for (const auto& path : answer.systemignoredpaths())
        ignored << QString::fromStdString(path);
    QCOMPARE(paths.contains(systemPath), !systemPath.isEmpty());
    QCOMPARE(ignored.contains(ignoredPath), !ignoredPath.isEmpty());
    if (systemPath.isEmpty())
        QVERIFY(paths.isEmpty() && ignored.isEmpty());
}

void ServiceSimRequestsTest::filteredSizeOfAVolume()
{
    Session session = startSession();
    QVERIFY(session.link);
    const quint64 used = findPartition(systemInfo(*session.link).drives(0), WindowsPartition)->used();

    Wire::FileTypeStructureRequest request;
    request.set_driveid(SystemDrive);
    request.set_partitionid(int(WindowsPartition));
    request.set_action(Wire::FileTypeStructureRequest::Start);
    auto* system = request.add_filetypes();
    system->set_id(0);
    system->set_paths("C:\\Windows,C:\\Program Files,C:\\Program Files (x86),C:\\ProgramData");
    auto* leftOut = request.add_filetypes();
    leftOut->set_id(1);
    leftOut->set_paths("C:\\Users\\alex\\Videos,C:\\pagefile.sys,C:\\hiberfil.sys");
    auto* extensions = request.add_filetypes();
    extensions->set_id(2);
    extensions->set_extensions(".flac,.mp3,.pak");
    session.link->send(Message::MigrationFilterTypeRequest, request);

    Wire::FileTypeStructure report;
    int interim = 0;
    do {
        QVERIFY(session.link->take(Message::MigrationFilterTypeResponse, &report));
        QCOMPARE(report.partitionid(), int(WindowsPartition));
        interim += report.code() == 7 ? 1 : 0;
    } while (report.code() == 7);
    QCOMPARE(int(report.code()), 0);
    QVERIFY(interim > 0);
    QCOMPARE(report.filetypes_size(), 3);
    QCOMPARE(sumOf(report), used);
    // The .pak files of the programs stay: system paths win over extensions.
    QVERIFY(sizeOf(report, 0) > 24 * GiB);
    const quint64 leftOutAtLeast = gibibytes(3.4) + gibibytes(1.2) + 780 * MiB + 8 * GiB + gibibytes(6.4);
    QVERIFY(sizeOf(report, 1) >= leftOutAtLeast);
    QVERIFY(sizeOf(report, 1) < leftOutAtLeast + 100 * MiB);
}

void ServiceSimRequestsTest::migrationChain()
{
    Session session = startSession();
    QVERIFY(session.link);
    ServiceLink& link = *session.link;
    const Wire::SystemInfo before = systemInfo(link);
    const Wire::SystemInfo_DriveInfo& source = before.drives(0);

    Wire::CleanDisk clean;
    clean.set_driveid(EmptyDrive);
    clean.set_partitionstyle(Wire::CleanDisk::GPT);
    link.send(Message::CleanDisk, clean);
    QVERIFY(link.take(Message::CleanDisk, &clean));
    QCOMPARE(int(clean.code()), 0);

    // EFI, reserved and Windows volume, where the source has them.
    QMap<quint32, quint32> created;
    for (quint32 id : {1u, 2u, WindowsPartition}) {
        Wire::PartitionCreate create;
        create.set_driveid(EmptyDrive);
        const Wire::PartitionInfo* original = findPartition(source, id);
        auto* partition = create.mutable_partition();
        partition->set_id(id);
        partition->set_offset(original->offset());
        partition->set_size(id == WindowsPartition ? 600 * GiB : original->size());
        partition->set_type(original->type());
        partition->set_gpttype(original->gpttype());
        link.send(Message::PartitionCreate, create);
        QVERIFY(link.take(Message::PartitionCreate, &create));
        QCOMPARE(int(create.code()), 0);
        QCOMPARE(create.partition().id(), id);
        QVERIFY(!created.values().contains(create.newpartitionid()));
        created.insert(id, create.newpartitionid());
    }
    for (quint32 id : {1u, WindowsPartition}) {
        Wire::PartitionFormat format;
        format.set_driveid(EmptyDrive);
        format.set_formatoption(true);
        format.mutable_partition()->set_id(created.value(id));
        format.mutable_partition()->set_filesystem(id == 1 ? "FAT32" : "NTFS");
        format.mutable_partition()->set_label(id == 1 ? "" : "Windows");
        link.send(Message::PartitionFormat, format);
        QVERIFY(link.take(Message::PartitionFormat, &format));
        QCOMPARE(int(format.code()), 0);
    }

    Wire::FileCopyRequest copy;
    copy.set_sourcedriveid(SystemDrive);
    copy.set_sourcepartitionid(WindowsPartition);
    copy.set_destinationdriveid(EmptyDrive);
    copy.set_destinationpartitionid(created.value(WindowsPartition));
    copy.mutable_filter()->add_paths("C:\\pagefile.sys");
    copy.mutable_filter()->add_paths("C:\\hiberfil.sys");
    copy.mutable_filter()->add_paths("C:\\Users\\alex\\Videos");
    copy.mutable_filter()->add_systempaths("C:\\Windows");
    link.send(Message::FileCopyRequest, copy);
    Wire::FileCopyReport report;
    QList<quint64> progress;
    do {
        QVERIFY(link.take(Message::FileCopyResponse, &report));
        if (report.code() == Wire::PROGRESS)
            progress << report.copiedsize();
    } while (report.code() == Wire::PROGRESS);
    QCOMPARE(int(report.code()), 0);
    QVERIFY(progress.size() >= 2);
    QVERIFY(std::is_sorted(progress.begin(), progress.end()));
    QVERIFY(progress.last() < report.copiedsize());
    const quint64 leftBehind = 8 * GiB + gibibytes(6.4) + gibibytes(3.4) + gibibytes(1.2) + 780 * MiB;
    QCOMPARE(report.copiedsize(), findPartition(source, WindowsPartition)->used() - leftBehind);
    QCOMPARE(report.faultedfiles_size(), 2);
    QCOMPARE(QString::fromStdString(report.faultedfiles(0)), QStringLiteral("C:\\Users\\alex\\NTUSER.DAT"));

    Wire::MigrationBootability boot;
    boot.set_driveid(EmptyDrive);
    boot.set_ospartitionid(created.value(WindowsPartition));
    boot.set_bootpartitionid(created.value(1));
    link.send(Message::MigrationBootability, boot);
    QVERIFY(link.take(Message::MigrationBootability, &boot));
    QCOMPARE(int(boot.code()), 0);

    // The next drive list shows the new layout, and the new volume holds what was copied.
    const Wire::SystemInfo after = systemInfo(link);
    const Wire::SystemInfo_DriveInfo& destination = after.drives(int(EmptyDrive));
    QCOMPARE(int(destination.partitionformatstyle()), int(Wire::SystemInfo_DriveInfo::GPT));
    QCOMPARE(destination.partitions_size(), 3);
    const Wire::PartitionInfo* efi = findPartition(destination, created.value(1));
    const Wire::PartitionInfo* windows = findPartition(destination, created.value(WindowsPartition));
    QVERIFY(efi && windows);
    QCOMPARE(QString::fromStdString(efi->gpttype()), QString(EfiGuid));
    QVERIFY(efi->isbootable());
    QVERIFY(efi->letter().empty());
    QCOMPARE(QString::fromStdString(windows->filesystem()), QStringLiteral("NTFS"));
    QCOMPARE(QString::fromStdString(windows->label()), QStringLiteral("Windows"));
    QCOMPARE(windows->size(), 600 * GiB);
    QVERIFY(windows->used() >= report.copiedsize());
    const QString letter = QString::fromStdString(windows->letter());
    QVERIFY(!letter.isEmpty() && letter != "C:" && letter != "D:" && letter != "E:");

    Wire::FileListRequest listing;
    listing.set_dirpath((letter + "\\Users\\alex\\").toStdString());
    link.send(Message::FileListRequest, listing);
    Wire::FileList list;
    QVERIFY(link.take(Message::FileList, &list));
    QVERIFY(list.directories().count("Documents") == 1);
    QVERIFY(list.directories().count("Videos") == 0);
}

void ServiceSimRequestsTest::migrationRefusals_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("answerType");
    QTest::addColumn<int>("code");

    auto bytes = [](const google::protobuf::MessageLite& message) { return QByteArray::fromStdString(message.SerializeAsString()); };

    Wire::CleanDisk clean;
    clean.set_driveid(SystemDrive);
    QTest::newRow("clean the running system's disk") << int(Message::CleanDisk) << bytes(clean) << int(Message::CleanDisk)
                                                     << int(Wire::ACCESS_DENIED);
    clean.set_driveid(42);
    QTest::newRow("clean an unknown disk") << int(Message::CleanDisk) << bytes(clean) << int(Message::CleanDisk)
                                           << int(Wire::NOT_FOUND);
    Wire::PartitionCreate create;
    create.set_driveid(EmptyDrive);
    create.mutable_partition()->set_offset(MiB);
    create.mutable_partition()->set_size(GiB);
    create.mutable_partition()->set_type(Wire::PartitionInfo::GPT);
    QTest::newRow("partition on an uninitialized disk") << int(Message::PartitionCreate) << bytes(create)
                                                        << int(Message::PartitionCreate) << int(Wire::INVALID_REQUEST);
    create.set_driveid(2);
    QTest::newRow("partition over another") << int(Message::PartitionCreate) << bytes(create)
                                            << int(Message::PartitionCreate) << int(Wire::INVALID_REQUEST);
    create.set_driveid(3);
    create.mutable_partition()->set_offset(0);
    create.mutable_partition()->set_size(512 * 1024);
    create.mutable_partition()->set_type(Wire::PartitionInfo::MBR);
    QTest::newRow("partition over the partition table") << int(Message::PartitionCreate) << bytes(create)
                                                        << int(Message::PartitionCreate) << int(Wire::INVALID_REQUEST);
    Wire::PartitionFormat format;
    format.set_driveid(EmptyDrive);
    format.mutable_partition()->set_id(7);
    format.mutable_partition()->set_filesystem("NTFS");
    QTest::newRow("format an unknown partition") << int(Message::PartitionFormat) << bytes(format)
                                                 << int(Message::PartitionFormat) << int(Wire::NOT_FOUND);
    Wire::FileCopyRequest copy;
    copy.set_sourcedriveid(SystemDrive);
    copy.set_sourcepartitionid(WindowsPartition);
    copy.set_destinationdriveid(2);
    copy.set_destinationpartitionid(1);
    QTest::newRow("copy onto a raw partition") << int(Message::FileCopyRequest) << bytes(copy)
                                               << int(Message::FileCopyResponse) << int(Wire::INVALID_REQUEST);
    Wire::MigrationBootability boot;
    boot.set_driveid(2);
    boot.set_ospartitionid(2);
    boot.set_bootpartitionid(1);
    QTest::newRow("boot a volume without Windows") << int(Message::MigrationBootability) << bytes(boot)
                                                   << int(Message::MigrationBootability) << int(Wire::FAILED);
}

void ServiceSimRequestsTest::migrationRefusals()
{
    QFETCH(int, type);
    QFETCH(QByteArray, payload);
    QFETCH(int, answerType);
    QFETCH(int, code);

    Session session = startSession();
    QVERIFY(session.link);
    const Wire::SystemInfo before = systemInfo(*session.link);
    session.link->send(Message::MessageType(type), payload);
    QByteArray answer;
    QVERIFY(session.link->take(Message::MessageType(answerType), &answer));
    QCOMPARE(answerCode(answer), code);
    // A refused step leaves the disks as they were.
    QCOMPARE(systemInfo(*session.link).SerializeAsString(), before.SerializeAsString());
}

void ServiceSimRequestsTest::copyIsCanceled()
{
    Session session = startSession({"--copy-step-ms", "30", "--copy-steps", "40"});
    QVERIFY(session.link);
    Wire::CleanDisk clean;
    clean.set_driveid(EmptyDrive);
    clean.set_partitionstyle(Wire::CleanDisk::MBR);
    session.link->send(Message::CleanDisk, clean);
    Wire::PartitionCreate create;
    create.set_driveid(EmptyDrive);
    create.mutable_partition()->set_offset(MiB);
    create.mutable_partition()->set_size(500 * GiB);
    create.mutable_partition()->set_type(Wire::PartitionInfo::MBR);
    create.mutable_partition()->set_mbrtype(7);
    session.link->send(Message::PartitionCreate, create);
    QVERIFY(session.link->take(Message::PartitionCreate, &create));
    QCOMPARE(int(create.code()), 0);
    Wire::PartitionFormat format;
    format.set_driveid(EmptyDrive);
    format.mutable_partition()->set_id(create.newpartitionid());
    format.mutable_partition()->set_filesystem("NTFS");
    session.link->send(Message::PartitionFormat, format);
    QVERIFY(session.link->take(Message::PartitionFormat, &format));

    Wire::FileCopyRequest copy;
    copy.set_sourcedriveid(SystemDrive);
    copy.set_sourcepartitionid(WindowsPartition);
    copy.set_destinationdriveid(EmptyDrive);
    copy.set_destinationpartitionid(create.newpartitionid());
    session.link->send(Message::FileCopyRequest, copy);
    Wire::FileCopyReport report;
    QVERIFY(session.link->take(Message::FileCopyResponse, &report));
    QCOMPARE(int(report.code()), int(Wire::PROGRESS));

    session.link->send(Message::FileCopyRequestCancel);
    do {
        QVERIFY(session.link->take(Message::FileCopyResponse, &report));
    } while (report.code() == Wire::PROGRESS);
    QCOMPARE(int(report.code()), int(Wire::CANCELED));
    QTest::qWait(150);
    QCOMPARE(session.link->pending(Message::FileCopyResponse), 0);
}

void ServiceSimRequestsTest::clientsShareOneMachine()
{
    Session session = startSession({"--copy-step-ms", "40", "--copy-steps", "10"});
    QVERIFY(session.link);
    ServiceLink other(session.service->name());
    QVERIFY(other.waitForConnection());

    // What one client does to the disks, the other sees in its next drive list.
    Wire::CleanDisk clean;
    clean.set_driveid(EmptyDrive);
    clean.set_partitionstyle(Wire::CleanDisk::GPT);
    session.link->send(Message::CleanDisk, clean);
    QVERIFY(session.link->take(Message::CleanDisk, &clean));
    Wire::PartitionCreate create;
    create.set_driveid(EmptyDrive);
    create.mutable_partition()->set_offset(MiB);
    create.mutable_partition()->set_size(700 * GiB);
    create.mutable_partition()->set_type(Wire::PartitionInfo::GPT);
    create.mutable_partition()->set_gpttype(BasicDataGuid);
    session.link->send(Message::PartitionCreate, create);
    QVERIFY(session.link->take(Message::PartitionCreate, &create));
    Wire::PartitionFormat format;
    format.set_driveid(EmptyDrive);
    format.mutable_partition()->set_id(create.newpartitionid());
    format.mutable_partition()->set_filesystem("NTFS");
    session.link->send(Message::PartitionFormat, format);
    QVERIFY(session.link->take(Message::PartitionFormat, &format));
    QCOMPARE(systemInfo(other).drives(int(EmptyDrive)).partitions_size(), 1);

    // A long copy for one client holds up neither the other client nor a second copy's refusal.
    Wire::FileCopyRequest copy;
    copy.set_sourcedriveid(SystemDrive);
    copy.set_sourcepartitionid(WindowsPartition);
    copy.set_destinationdriveid(EmptyDrive);
    copy.set_destinationpartitionid(create.newpartitionid());
    session.link->send(Message::FileCopyRequest, copy);
    Wire::FileCopyReport report;
    QVERIFY(session.link->take(Message::FileCopyResponse, &report));
    QCOMPARE(int(report.code()), int(Wire::PROGRESS));
    other.send(Message::FileCopyRequest, copy);
    QVERIFY(other.take(Message::FileCopyResponse, &report));
    QCOMPARE(int(report.code()), int(Wire::IN_PROGRESS));
    other.send(Message::Version);
    QByteArray version;
    QVERIFY(other.take(Message::Version, &version, 200));
    do {
        QVERIFY(session.link->take(Message::FileCopyResponse, &report));
    } while (report.code() == Wire::PROGRESS);
    QCOMPARE(int(report.code()), 0);
}

void ServiceSimRequestsTest::logFilesAreCopied()
{
    Session session = startSession();
    QVERIFY(session.link);
    QTemporaryDir ticket;
    QVERIFY(ticket.isValid());

    Wire::CopyLogFilesRequest request;
    request.set_destinationdirectory(ticket.path().toStdString());
    session.link->send(Message::CopyLogFilesRequest, request);
    Wire::CopyLogFilesResponse answer;
    QVERIFY(session.link->take(Message::CopyLogFilesResponse, &answer));
    QCOMPARE(int(answer.code()), 0);
    QVERIFY(answer.filescopied() >= 1);
    const QString baseName = QString::fromStdString(answer.logfilebasename());
    QVERIFY(!baseName.isEmpty());
    const QStringList copies = QDir(ticket.path()).entryList({baseName + "*"}, QDir::Files);
    QCOMPARE(copies.size(), int(answer.filescopied()));
    // The service's log names the request it is answering.
    QFile log(QDir(ticket.path()).filePath(baseName + ".log"));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QVERIFY(log.readAll().contains("CopyLogFilesRequest"));

    request.set_destinationdirectory(ticket.filePath("missing").toStdString());
    session.link->send(Message::CopyLogFilesRequest, request);
    QVERIFY(session.link->take(Message::CopyLogFilesResponse, &answer));
    QCOMPARE(int(answer.code()), int(Wire::NOT_FOUND));
}

void ServiceSimRequestsTest::answerFaults_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("answerType");
    QTest::addColumn<QList<int>>("codes"); // of three benchmark requests in a row; -1 for no answer
    QTest::addColumn<int>("minimumMs");

    const int benchmark = int(Message::DiskBenchmarkResponse);
    QTest::newRow("no fault") << QStringList() << benchmark << QList<int>{0, 0, 0} << 0;
    QTest::newRow("never answered") << QStringList{"--never", "DiskBenchmarkRequest"} << benchmark << QList<int>{-1, -1, -1} << 0;
    QTest::newRow("late") << QStringList{"--delay", "DiskBenchmarkRequest=250"} << benchmark << QList<int>{0, 0, 0} << 250;
    QTest::newRow("second fails") << QStringList{"--fail", "DiskBenchmarkRequest#2=3"} << benchmark << QList<int>{0, 3, 0} << 0;
    QTest::newRow("every one fails, by number") << QStringList{"--fail", "50=6"} << benchmark << QList<int>{6, 6, 6} << 0;
}

void ServiceSimRequestsTest::answerFaults()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, answerType);
    QFETCH(QList<int>, codes);
    QFETCH(int, minimumMs);

    Session session = startSession(arguments + QStringList{"--benchmark-ms", "10"});
    QVERIFY(session.link);
    Wire::DiskPerformanceRequest request;
    request.set_driveid(SystemDrive);
    request.set_filesize(134217728);
    request.set_blocksize(4194304);
    for (int code : codes) {
        const qint64 sentAt = ServiceLink::nowMs();
        session.link->send(Message::DiskBenchmarkRequest, request);
        QByteArray payload;
        qint64 receivedAt = 0;
        const bool answered = session.link->take(Message::MessageType(answerType), &payload, code < 0 ? 300 : 5000, &receivedAt);
        QCOMPARE(answered, code >= 0);
        if (answered) {
            QCOMPARE(answerCode(payload), code);
            QVERIFY(receivedAt - sentAt >= minimumMs);
        }
    }
    // Other requests are answered all the while.
    session.link->send(Message::Version);
    QByteArray version;
    QVERIFY(session.link->take(Message::Version, &version));
}

void ServiceSimRequestsTest::otherScenariosLoad_data()
{
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<int>("drives");
    QTest::addColumn<QString>("anyModel");

    QTest::newRow("health warnings") << "health-warnings" << 4 << "BRANTEL";
    QTest::newRow("MBR with logical partitions") << "mbr-legacy" << 2 << "BRANTEL";
    QTest::newRow("SMART families") << "smart-families" << 4 << "BRANTEL";
}

void ServiceSimRequestsTest::otherScenariosLoad()
{
    QFETCH(QString, scenario);
    QFETCH(int, drives);
    QFETCH(QString, anyModel);

    Session session = startSession({"--scenario", scenario});
    QVERIFY(session.link);
    const Wire::SystemInfo info = systemInfo(*session.link);
    QCOMPARE(info.drives_size(), drives);
    QVERIFY(QString::fromStdString(info.drives(0).model()).contains(anyModel));
    for (const auto& drive : info.drives()) {
        quint64 end = 0;
        for (const auto& partition : drive.partitions()) {
            QVERIFY(partition.used() <= partition.size());
            end = qMax<quint64>(end, partition.offset() + partition.size());
        }
        QVERIFY(end <= drive.size());
    }
}

void ServiceSimRequestsTest::filteredSizeStops()
{
    // Four steps of 100 ms: unstopped, the final answer would come 400 ms after the start.
    Session session = startSession({"--scan-step-ms", "100"});
    QVERIFY(session.link);
    Wire::FileTypeStructureRequest request;
    request.set_driveid(SystemDrive);
    request.set_partitionid(int(WindowsPartition));
    request.set_action(Wire::FileTypeStructureRequest::Start);
    session.link->send(Message::MigrationFilterTypeRequest, request);
    Wire::FileTypeStructure report;
    QVERIFY(session.link->take(Message::MigrationFilterTypeResponse, &report));
    QCOMPARE(int(report.code()), 7);

    Wire::FileTypeStructureRequest stop;
    stop.set_action(Wire::FileTypeStructureRequest::Stop);
    session.link->send(Message::MigrationFilterTypeRequest, stop);
    QTest::qWait(600);
    // A report already on its way may come; the final one never does.
    while (session.link->pending(Message::MigrationFilterTypeResponse) > 0) {
        QVERIFY(session.link->take(Message::MigrationFilterTypeResponse, &report));
        QCOMPARE(int(report.code()), 7);
    }
}

void ServiceSimRequestsTest::healthRulesAreVisible_data()
{
    QTest::addColumn<quint32>("driveId");
    QTest::addColumn<double>("minUsed"); // share of the capacity in use, as the program reckons it
    QTest::addColumn<double>("maxUsed");
    QTest::addColumn<int>("minLife");    // raw value of attribute 231
    QTest::addColumn<int>("maxLife");
    QTest::addColumn<bool>("slowerLink");

    QTest::newRow("free space under 10%, life under 70%") << 0u << 0.9 << 1.0 << 10 << 69 << false;
    QTest::newRow("free space under 20%, life under 10%") << 1u << 0.8 << 0.9 << 0 << 9 << false;
    QTest::newRow("SATA link below the drive's speed") << 2u << 0.0 << 0.8 << 70 << 100 << true;
    QTest::newRow("healthy") << 3u << 0.0 << 0.8 << 70 << 100 << false;
}

void ServiceSimRequestsTest::healthRulesAreVisible()
{
    QFETCH(quint32, driveId);
    QFETCH(double, minUsed);
    QFETCH(double, maxUsed);
    QFETCH(int, minLife);
    QFETCH(int, maxLife);
    QFETCH(bool, slowerLink);

    Session session = startSession({"--scenario", "health-warnings"});
    QVERIFY(session.link);
    const Wire::SystemInfo_DriveInfo drive = systemInfo(*session.link).drives(int(driveId));
    quint64 used = 0;
    for (const auto& partition : drive.partitions())
        used += partition.used();
    const double share = double(used) / double(drive.size());
    QVERIFY2(share > minUsed && share <= maxUsed, qPrintable(QString::number(share)));
    QCOMPARE(drive.satacurrentspeed() < drive.satasupportedspeed(), slowerLink);

    Wire::SmartRequest request;
    request.set_driveid(driveId);
    request.set_allattributes(false);
    request.set_attributeid(231);
    session.link->send(Message::SmartRequest, request);
    Wire::Smart smart;
    QVERIFY(session.link->take(Message::Smart, &smart));
    QCOMPARE(smart.attributes_size(), 1);
    const int life = QByteArray::fromHex(QByteArray::fromStdString(smart.attributes(0).data())).at(0);
    QVERIFY2(life >= minLife && life <= maxLife, qPrintable(QString::number(life)));
}

void ServiceSimRequestsTest::logicalPartitionsOnAnMbrDisk_data()
{
    QTest::addColumn<QList<quint32>>("order"); // of creation, by source partition id
    QTest::newRow("extended first") << QList<quint32>{1, 3, 4};
    QTest::newRow("logical first") << QList<quint32>{1, 4, 3};
}

void ServiceSimRequestsTest::logicalPartitionsOnAnMbrDisk()
{
    QFETCH(QList<quint32>, order);

    Session session = startSession({"--scenario", "mbr-legacy"});
    QVERIFY(session.link);
    ServiceLink& link = *session.link;
    const Wire::SystemInfo before = systemInfo(link);
    const Wire::SystemInfo_DriveInfo& source = before.drives(0);
    QCOMPARE(int(source.partitionformatstyle()), int(Wire::SystemInfo_DriveInfo::MBR));
    const Wire::PartitionInfo* extended = findPartition(source, 3);
    QVERIFY(extended && extended->mbrtype() == 0x0F);
    for (quint32 id : {4u, 5u}) {
        const Wire::PartitionInfo* logical = findPartition(source, id);
        QVERIFY(logical && logical->islogical());
        QVERIFY(logical->offset() > extended->offset());
        QVERIFY(logical->offset() + logical->size() <= extended->offset() + extended->size());
    }
    // The empty drive's controller reports its serial in hexadecimal.
    const QString serial = QString::fromStdString(before.drives(1).serial());
    QCOMPARE(serial.size(), 40);
    QCOMPARE(QString::fromLatin1(QByteArray::fromHex(serial.toLatin1())), QStringLiteral("BT23C0917Q4K8M2RX5A1"));

    // The same layout made anew on the empty drive: a logical drive is one inside the extended one.
    Wire::CleanDisk clean;
    clean.set_driveid(EmptyDrive);
    clean.set_partitionstyle(Wire::CleanDisk::MBR);
    link.send(Message::CleanDisk, clean);
    QVERIFY(link.take(Message::CleanDisk, &clean));
    QCOMPARE(int(clean.code()), 0);
    QMap<quint32, quint32> created;
    for (quint32 id : order) {
        const Wire::PartitionInfo* original = findPartition(source, id);
        Wire::PartitionCreate create;
        create.set_driveid(EmptyDrive);
        create.mutable_partition()->set_id(id);
        create.mutable_partition()->set_offset(original->offset());
        create.mutable_partition()->set_size(id == 3 ? 200 * GiB : original->size());
        create.mutable_partition()->set_type(Wire::PartitionInfo::MBR);
        create.mutable_partition()->set_mbrtype(original->mbrtype());
        link.send(Message::PartitionCreate, create);
        QVERIFY(link.take(Message::PartitionCreate, &create));
        QCOMPARE(int(create.code()), 0);
        created.insert(id, create.newpartitionid());
    }
    const Wire::SystemInfo after = systemInfo(link);
    QVERIFY(!findPartition(after.drives(1), created.value(1))->islogical());
    QVERIFY(!findPartition(after.drives(1), created.value(3))->islogical());
    QVERIFY(findPartition(after.drives(1), created.value(4))->islogical());
    QCOMPARE(int(after.drives(1).partitionformatstyle()), int(Wire::SystemInfo_DriveInfo::MBR));
}

void ServiceSimRequestsTest::scenarioFromAFile()
{
    QTemporaryFile file(QDir::tempPath() + QStringLiteral("/scenario-XXXXXX.json"));
    QVERIFY(file.open());
    file.write(R"({
      "summary": { "OperatingSystemInfo": { "WindowsDirectory": "C:\\Windows" } },
      "drives": [ {
        "Model": "BRANTEL Test 64GB", "Serial": "T1", "Size": "64 GB", "PartitionFormatStyle": "GPT",
        "smart": [ { "Id": 241, "raw": "0x10", "growth": 2 } ],
        "Partitions": [
          { "Size": "100 MiB", "Type": "GPT" },
          { "Size": "rest", "Type": "GPT", "Letter": "C:", "FileSystem": "NTFS",
            "files": { "Windows": { "a.dll": "1 MiB" }, "b.txt": 1000 } }
        ] } ],
      "faults": { "version": "3.0.1", "fail": [ { "type": "SmartRequest", "occurrence": 2, "code": 2 } ] }
    })");
    file.flush();

    Session session = startSession({"--scenario", file.fileName()});
    QVERIFY(session.link);
    const Wire::SystemInfo info = systemInfo(*session.link);
    QCOMPARE(info.drives_size(), 1);
    const Wire::SystemInfo_DriveInfo& drive = info.drives(0);
    QCOMPARE(drive.driveid(), 0u);
    QCOMPARE(drive.size(), 64000000000ull);
    QCOMPARE(drive.partitions_size(), 2);
    // Numbered and placed one after the other; the last takes what is left, and is as full as its tree.
    QCOMPARE(drive.partitions(0).id(), 1u);
    QCOMPARE(drive.partitions(0).offset(), MiB);
    QCOMPARE(drive.partitions(1).id(), 2u);
    QCOMPARE(drive.partitions(1).offset(), 101 * MiB);
    QVERIFY(drive.partitions(1).offset() + drive.partitions(1).size() <= drive.size());
    QVERIFY(drive.size() - (drive.partitions(1).offset() + drive.partitions(1).size()) < 3 * MiB);
    QCOMPARE(drive.partitions(1).used(), MiB + 1000);
    QVERIFY(!drive.partitions(1).gptid().empty());

    session.link->send(Message::Version);
    Wire::Version version;
    QVERIFY(session.link->take(Message::Version, &version));
    QCOMPARE(int(version.major()), 3);

    Wire::SmartRequest request;
    request.set_driveid(0);
    request.set_allattributes(true);
    Wire::Smart smart;
    QList<int> codes;
    for (int i = 0; i < 3; ++i) {
        session.link->send(Message::SmartRequest, request);
        QVERIFY(session.link->take(Message::Smart, &smart));
        codes << int(smart.errorcode());
    }
    QCOMPARE(codes, (QList<int>{0, 2, 0}));
    // One read-out moved the counter on by its growth; the failed one read nothing.
    QCOMPARE(QString::fromStdString(smart.attributes(0).data()), QStringLiteral("120000000000"));
}

KESTRAVIN_TEST_MAIN(ServiceSimRequestsTest)

#include "tst_servicesim_requests.moc"
