#include "SystemInfoBuilder.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/FileCategories.h"
#include "system/Partition.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include "FileTypeStructure.pb.h"
#include "SystemSummary.pb.h"
#include "SystemTrimCommand.pb.h"

#include <QSignalSpy>
#include <QTest>

using namespace Velmora::System;
using Velmora::Message::Message;
namespace pb = Velmora::Message;

namespace {

using TypeOnly = void (Velmora::Communication::Handler::*)(Message::MessageType);
using TypeAndPayload = void (Velmora::Communication::Handler::*)(Message::MessageType, QByteArray);

template <typename T>
QByteArray bytesOf(const T& message)
{
    QByteArray bytes;
    bytes.resize(static_cast<int>(message.ByteSizeLong()));
    message.SerializeToArray(bytes.data(), bytes.size());
    return bytes;
}

// Two drives: a system SSD with EFI, MSR and C:, and a data disk.
QByteArray twoDrives(const QString& firstSerial = QStringLiteral("AA11"))
{
    SystemInfoBuilder b;
    auto& ssd = b.drive(1, QStringLiteral("BRANTEL SSD S1 SCSI Disk Device"), firstSerial, 256 * SystemInfoBuilder::GiB);
    SystemInfoBuilder::partition(ssd, 1, SystemInfoBuilder::MiB, 100 * SystemInfoBuilder::MiB, 30 * SystemInfoBuilder::MiB);
    SystemInfoBuilder::partition(ssd, 2, 101 * SystemInfoBuilder::MiB, 16 * SystemInfoBuilder::MiB, 0);
    SystemInfoBuilder::partition(ssd, 3, 117 * SystemInfoBuilder::MiB, 100 * SystemInfoBuilder::GiB,
        40 * SystemInfoBuilder::GiB, QStringLiteral("C:"));
    auto& hdd = b.drive(2, QStringLiteral("Orvane HD1000"), QStringLiteral("BB22"), 1000 * SystemInfoBuilder::GiB);
    SystemInfoBuilder::partition(hdd, 1, SystemInfoBuilder::MiB, 999 * SystemInfoBuilder::GiB,
        500 * SystemInfoBuilder::GiB, QStringLiteral("D:"));
    return b.payload();
}

} // namespace

class TestSystemManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void buildsTheModelFromTheDriveList();
    void asksForTheSummaryAfterEveryDriveList();
    void replacedDriveGoesBeforeItsSuccessorComes();
    void unchangedListTouchesNoPartition();
    void updatesPartitionsInPlace();
    void emptyListRemovesEveryDrive();
    void addsNewDrivesBeforeRemovingGoneOnes();
    void marksTheSystemPartitionFromTheSummary();
    void followsTrimAnswers_data();
    void followsTrimAnswers();
    void followsFileCategoryScans_data();
    void followsFileCategoryScans();
    void ignoresScansOfUnknownDrives();
    void asksForFileCategories();
    void logsUnparsableMessages_data();
    void logsUnparsableMessages();
    void printsTheLastMessagesAsJson();

private:
    System* m_system = nullptr;
    SystemManager* m_manager = nullptr;
    QList<QPair<int, QByteArray>> m_sent;
};

void TestSystemManager::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
    qRegisterMetaType<Message::MessageType>();
}

void TestSystemManager::init()
{
    m_system = new System;
    m_manager = new SystemManager(m_system);
    m_sent.clear();
    connect(m_manager, static_cast<TypeOnly>(&SystemManager::sendMessage), this,
        [this](Message::MessageType type) { m_sent.append({type, QByteArray()}); });
    connect(m_manager, static_cast<TypeAndPayload>(&SystemManager::sendMessage), this,
        [this](Message::MessageType type, const QByteArray& payload) { m_sent.append({type, payload}); });
}

void TestSystemManager::cleanup()
{
    delete m_manager;
    delete m_system;
}

void TestSystemManager::buildsTheModelFromTheDriveList()
{
    QSignalSpy added(m_system, &System::driveAdded);
    m_manager->handleMessage(Message::SystemInfo, twoDrives());

    QCOMPARE(m_system->driveIds(), (QList<int>{1, 2}));
    QCOMPARE(added.count(), 2);
    Drive* ssd = m_system->drive(1);
    QCOMPARE(ssd->model(), QStringLiteral("BRANTEL SSD S1"));
    QCOMPARE(ssd->serialNumber(), QStringLiteral("AA11"));
    QCOMPARE(ssd->capacity().value(), qint64(256) << 30);
    QVERIFY(ssd->isGpt());
    QVERIFY(ssd->partition(2)->isMicrosoftReserved() == false);  // a data GUID in this list
    QCOMPARE(ssd->partition(3)->letter(), QStringLiteral("C:"));
    // The head gap is absorbed, the rest of the drive stays one unused stretch.
    QCOMPARE(ssd->partitionCount(), 4);
    QVERIFY(ssd->hasPartition(-1));
    QCOMPARE(ssd->displayText(true), QStringLiteral("BRANTEL SSD S1 [256.00 GB] (C:)"));
}

void TestSystemManager::asksForTheSummaryAfterEveryDriveList()
{
    m_manager->clientConnected();
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    m_manager->handleMessage(Message::SystemInfo, QByteArray());
    m_system->refresh();
    QCOMPARE(m_sent, (QList<QPair<int, QByteArray>>{{Message::SystemInfoRequest, {}}, {Message::SystemReport, {}},
                         {Message::SystemReport, {}}, {Message::SystemInfoRequest, {}}}));
}

void TestSystemManager::replacedDriveGoesBeforeItsSuccessorComes()
{
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    Drive* before = m_system->drive(1);
    QStringList journal;
    connect(m_system, &System::driveRemoved, this, [&](int id) { journal << QStringLiteral("removed %1").arg(id); });
    connect(m_system, &System::driveAdded, this, [&](int id) { journal << QStringLiteral("added %1").arg(id); });

    m_manager->handleMessage(Message::SystemInfo, twoDrives(QStringLiteral("CC33")));
    QCOMPARE(journal, (QStringList{QStringLiteral("removed 1"), QStringLiteral("added 1")}));
    QVERIFY(m_system->drive(1) != before);
    QCOMPARE(m_system->drive(1)->serialNumber(), QStringLiteral("CC33"));
}

void TestSystemManager::unchangedListTouchesNoPartition()
{
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    Drive* ssd = m_system->drive(1);
    QList<QSharedPointer<QSignalSpy>> partitionSpies;
    int unusedEntries = 0;
    for (Partition* p : ssd->partitions()) {
        if (p->type() == Partition::UnusedSpace)
            ++unusedEntries;
        else
            partitionSpies.append(QSharedPointer<QSignalSpy>::create(p, &Partition::dataChanged));
    }
    QCOMPARE(unusedEntries, 1);
    QSignalSpy removed(ssd, &Drive::partitionRemoved);
    QSignalSpy changed(ssd, &Drive::dataChanged);
    QSignalSpy added(m_system, &System::driveAdded);

    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    for (const auto& spy : partitionSpies)
        QCOMPARE(spy->count(), 0);
    QCOMPARE(removed.count(), unusedEntries);
    QCOMPARE(removed.at(0).at(0).toInt(), -1);
    QCOMPARE(changed.count(), unusedEntries);
    QCOMPARE(added.count(), 0);
}

void TestSystemManager::updatesPartitionsInPlace()
{
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    Partition* c = m_system->drive(1)->partition(3);
    QSignalSpy changed(c, &Partition::dataChanged);

    SystemInfoBuilder b;
    auto& ssd = b.drive(1, QStringLiteral("BRANTEL SSD S1"), QStringLiteral("AA11"), 256 * SystemInfoBuilder::GiB);
    SystemInfoBuilder::partition(ssd, 3, 117 * SystemInfoBuilder::MiB, 100 * SystemInfoBuilder::GiB,
        41 * SystemInfoBuilder::GiB, QStringLiteral("C:"));
    SystemInfoBuilder::partition(ssd, 4, 200 * SystemInfoBuilder::GiB, 10 * SystemInfoBuilder::GiB, 0,
        QStringLiteral("E:"));
    LogCapture log;
    m_manager->handleMessage(Message::SystemInfo, b.payload());

    QCOMPARE(m_system->drive(1)->partition(3), c);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(c->used().value(), qint64(41) << 30);
    // The gap carved by the new partition is newer than the list of entries to remove.
    QCOMPARE(m_system->drive(1)->partitions().keys(), (QList<int>{-2, 3, 4}));
    QCOMPARE(m_system->driveIds(), QList<int>{1});
    QCOMPARE(log.count(QStringLiteral("Update existing partition: 1")), 1);
    QCOMPARE(log.count(QStringLiteral("Add partition: 4")), 1);
    QCOMPARE(log.count(QStringLiteral("Remove partition: -1")), 1);
    QCOMPARE(log.count(QStringLiteral("Remove drive: 2")), 1);
}

void TestSystemManager::emptyListRemovesEveryDrive()
{
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    m_system->setCurrentDrive(2);
    QSignalSpy removed(m_system, &System::driveRemoved);
    LogCapture log;
    m_sent.clear();
    m_manager->handleMessage(Message::SystemInfo, QByteArray());

    QCOMPARE(removed.count(), 2);
    QCOMPARE(removed.at(0).at(0).toInt(), 1);
    QCOMPARE(log.count(QStringLiteral("Last drive removed from system.")), 1);
    QCOMPARE(m_sent.size(), 1);
    QCOMPARE(m_sent.first().first, int(Message::SystemReport));
}

void TestSystemManager::addsNewDrivesBeforeRemovingGoneOnes()
{
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    SystemInfoBuilder b;
    b.drive(1, QStringLiteral("BRANTEL SSD S1"), QStringLiteral("AA11"), 256 * SystemInfoBuilder::GiB);
    b.drive(9, QStringLiteral("BRANTEL NV2"), QStringLiteral("NV99"), 512 * SystemInfoBuilder::GiB,
        QStringLiteral("NVMe"));
    QStringList journal;
    connect(m_system, &System::driveRemoved, this, [&](int id) { journal << QStringLiteral("removed %1").arg(id); });
    connect(m_system, &System::driveAdded, this, [&](int id) { journal << QStringLiteral("added %1").arg(id); });
    m_manager->handleMessage(Message::SystemInfo, b.payload());
    QCOMPARE(journal, (QStringList{QStringLiteral("added 9"), QStringLiteral("removed 2")}));
}

void TestSystemManager::marksTheSystemPartitionFromTheSummary()
{
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    pb::SystemSummary summary;
    summary.mutable_operatingsysteminfo()->set_name("Windows 11 Pro");
    summary.mutable_operatingsysteminfo()->set_windowsdirectory("c:\\Windows");
    summary.mutable_operatingsysteminfo()->set_architecture("64-bit");
    summary.mutable_baseboardinfo()->set_manufacturer("Acme");
    summary.mutable_baseboardinfo()->set_product("B650");
    summary.mutable_baseboardinfo()->set_version("1.0");
    summary.mutable_baseboardinfo()->set_ahcienabled(true);
    summary.mutable_baseboardinfo()->set_trimenabled(true);
    QSignalSpy configuration(m_system, &System::systemConfigurationChanged);
    m_manager->handleMessage(Message::SystemReport, bytesOf(summary));

    QCOMPARE(m_system->drive(1)->partition(3)->os(), QStringLiteral("Windows 11 Pro"));
    QVERIFY(m_system->drive(1)->hasOperatingSystem());
    QVERIFY(!m_system->drive(2)->hasOperatingSystem());
    QVERIFY(m_system->ahciEnabled());
    QVERIFY(m_system->trimEnabled());
    QVERIFY(m_system->is64Bit());
    QCOMPARE(m_system->motherboard(), QStringLiteral("Acme B650 1.0"));
    QVERIFY(configuration.count() > 0);

    // A later summary without the directory leaves the mark where it is.
    m_manager->handleMessage(Message::SystemReport, QByteArray());
    QCOMPARE(m_system->drive(1)->partition(3)->os(), QStringLiteral("Windows 11 Pro"));
    QVERIFY(!m_system->is64Bit());
}

void TestSystemManager::followsTrimAnswers_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("expected");
    QTest::newRow("success, enabled") << 0 << true << true;
    QTest::newRow("failure code changes nothing") << 3 << true << false;
}

void TestSystemManager::followsTrimAnswers()
{
    QFETCH(int, code);
    QFETCH(bool, enabled);
    QFETCH(bool, expected);
    m_system->enableTrimCommand();
    QCOMPARE(m_sent.size(), 1);
    QCOMPARE(m_sent.first().first, int(Message::SystemTrimCommand));
    QCOMPARE(m_sent.first().second, QByteArray::fromHex("1001"));

    pb::SystemTrimCommand answer;
    answer.set_code(static_cast<pb::Code>(code));
    answer.set_trimenabled(enabled);
    m_manager->handleMessage(Message::SystemTrimCommand, bytesOf(answer));
    QCOMPARE(m_system->trimEnabled(), expected);
}

void TestSystemManager::followsFileCategoryScans_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("finished");
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("progress");
    QTest::addColumn<qint64>("videoSize");
    QTest::addColumn<QString>("logged");

    QTest::newRow("progress report") << 7 << false << int(FileCategoryStatus::Scanning) << 0.25 << qint64(5000) << "";
    QTest::newRow("final report") << 0 << true << int(FileCategoryStatus::Complete) << 1.0 << qint64(5000) << "";
    QTest::newRow("scan gone") << 5 << false << int(FileCategoryStatus::NotScanned) << 0.0 << qint64(0) << "";
    QTest::newRow("failure") << 3 << false << int(FileCategoryStatus::Scanning) << 0.1 << qint64(100)
                             << "Error updating file categories: 3";
}

void TestSystemManager::followsFileCategoryScans()
{
    QFETCH(int, code);
    QFETCH(bool, finished);
    QFETCH(int, status);
    QFETCH(double, progress);
    QFETCH(qint64, videoSize);
    QFETCH(QString, logged);

    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    FileCategories* categories = m_system->drive(2)->fileCategories();
    // A scan under way before the answer under test.
    pb::FileTypeStructure running;
    running.set_code(pb::IN_PROGRESS);
    running.set_driveid(2);
    running.set_progress(0.1f);
    auto* info = running.add_filetypes();
    info->set_id(3);
    info->set_size(100);
    m_manager->handleMessage(Message::FileCat, bytesOf(running));

    pb::FileTypeStructure report;
    report.set_code(static_cast<pb::Code>(code));
    report.set_driveid(2);
    report.set_progress(0.25f);
    report.set_finished(finished);
    info = report.add_filetypes();
    info->set_id(3);
    info->set_size(5000);
    LogCapture log;
    m_manager->handleMessage(Message::FileCat, bytesOf(report));

    QCOMPARE(categories->status(), status);
    QCOMPARE(categories->progress(), double(float(progress)));
    QCOMPARE(categories->size(FileCategory::Video), videoSize);
    QCOMPARE(log.messages(Velmora::Logger::Error), logged.isEmpty() ? QStringList() : QStringList{logged});
}

void TestSystemManager::ignoresScansOfUnknownDrives()
{
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    pb::FileTypeStructure report;
    report.set_code(pb::NOT_FOUND);
    report.set_driveid(77);
    LogCapture log;
    m_manager->handleMessage(Message::FileCat, bytesOf(report));
    QVERIFY(log.messages().isEmpty());
}

void TestSystemManager::asksForFileCategories()
{
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    m_sent.clear();
    m_system->drive(2)->updateFileCategories();
    m_system->drive(2)->stopUpdatingFileCategories();
    QCOMPARE(m_sent.size(), 2);

    pb::FileTypeStructureRequest start;
    QCOMPARE(m_sent.at(0).first, int(Message::FileTypeStructureReq));
    QVERIFY(start.ParseFromArray(m_sent.at(0).second.constData(), m_sent.at(0).second.size()));
    QCOMPARE(start.driveid(), 2u);
    QCOMPARE(start.action(), pb::FileTypeStructureRequest::Start);
    QCOMPARE(start.partitionid(), -1);
    QList<quint32> ids;
    for (const auto& type : start.filetypes())
        ids.append(type.id());
    QCOMPARE(ids, (QList<quint32>{2, 5, 4, 3, 0, 1}));
    QVERIFY(QString::fromStdString(start.filetypes(1).extensions()).contains(QLatin1String(",.cr2tings,")));
    QCOMPARE(QString::fromStdString(start.filetypes(5).paths()),
        QStringLiteral("Program Files,Program Files (x86),ProgramData"));
    QVERIFY(start.filetypes(5).extensions().empty());

    pb::FileTypeStructureRequest stop;
    QVERIFY(stop.ParseFromArray(m_sent.at(1).second.constData(), m_sent.at(1).second.size()));
    QCOMPARE(stop.action(), pb::FileTypeStructureRequest::Stop);
    QCOMPARE(stop.filetypes_size(), 0);
    QCOMPARE(stop.driveid(), 2u);
}

void TestSystemManager::logsUnparsableMessages_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("logged");
    QTest::newRow("drive list") << int(Message::SystemInfo) << "Cannot update system information. Message parse failed.";
    QTest::newRow("file categories") << int(Message::FileCat)
                                     << "Cannot update file category information. Message parse failed.";
    QTest::newRow("summary") << int(Message::SystemReport) << "Cannot update system information. Message parse failed.";
    QTest::newRow("trim") << int(Message::SystemTrimCommand) << "Cannot update trim status. Message parse failed.";
    QTest::newRow("foreign type") << int(Message::Smart) << "Unexpected message type: Smart.";
}

void TestSystemManager::logsUnparsableMessages()
{
    QFETCH(int, type);
    QFETCH(QString, logged);
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    m_sent.clear();
    LogCapture log;
    m_manager->handleMessage(static_cast<Message::MessageType>(type), QByteArray::fromHex("0aff"));
    QCOMPARE(log.messages(Velmora::Logger::Error), QStringList{logged});
    QCOMPARE(m_system->driveIds(), (QList<int>{1, 2}));
    QVERIFY(m_sent.isEmpty());
}

void TestSystemManager::printsTheLastMessagesAsJson()
{
    m_manager->handleMessage(Message::SystemInfo, twoDrives());
    const QString json = m_manager->systemInfoJson();
    QVERIFY2(json.startsWith(QLatin1String("{\n \"Drives\": [\n  {\n   \"DriveID\": 1,\n")), qPrintable(json));
    QVERIFY(json.contains(QLatin1String("\"Size\": \"274877906944\"")));
    QVERIFY(json.contains(QLatin1String("\"Letter\": \"D:\"")));
    QVERIFY(json.contains(QLatin1String("\"PartitionFormatStyle\": \"GPT\"")));
    QVERIFY(json.contains(QLatin1String("\"Type\": \"GPT\"")));
    QVERIFY(m_manager->systemReportJson().contains(QLatin1String("\"ComputerManufacturer\": \"\"")));
}

KESTRAVIN_TEST_MAIN(TestSystemManager)
#include "tst_systemmanager.moc"
