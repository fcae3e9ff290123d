#include "ControllerRig.h"
#include "migration/ExtensionsFilter.h"
#include "migration/FileExtGroup.h"
#include "migration/FileSystemFilter.h"
#include "migration/FileSystemNode.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/FileCategories.h"

#include "FileList.pb.h"

#include <QSignalSpy>
#include <QTest>

using namespace PlanBuilder;
using Velmora::Message::Message;
namespace pb = Velmora::Message;
namespace Steps = Velmora::Migration;

class TestMigrationController : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void registersItsMessageTypes();
    void nothingMarkedFinishesAtOnce();
    void fullRunInStrictOrder();
    void requestsCarryThePlan();
    void onlyRawPartitions();
    void onlyEfiAndMsr_data();
    void onlyEfiAndMsr();
    void bootPartitionWithoutSystemNeedsNoFix();
    void copyProgressAddsFinishedPartitions();
    void cancelWhileCreating();
    void cancelWhileCopying();
    void cancelFromIdle();
    void failures_data();
    void failures();
    void watchdogEndsASilentRun();
    void everyMessageRestartsTheWatchdog();
    void unknownPartitionsStopTheChain_data();
    void unknownPartitionsStopTheChain();
    void unparsablePayloads_data();
    void unparsablePayloads();
    void systemPathsOneAtATime();
    void systemPathsForUnknownPartitions_data();
    void systemPathsForUnknownPartitions();
    void systemPathsErrorBlocksTheQueue_data();
    void systemPathsErrorBlocksTheQueue();
    void fileListsReachTheTree();
    void filteredSizeRequest();
    void filteredSizeReports_data();
    void filteredSizeReports();

private:
    // Runs the example up to its first copy request and returns the rig's frame index of it.
    int runToFirstCopy(ControllerRig& rig);
};

void TestMigrationController::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
}

int TestMigrationController::runToFirstCopy(ControllerRig& rig)
{
    rig.model->startMigration();
    rig.serve([](int type) { return type == Message::FileCopyRequest; });
    return rig.frames.size() - 1;
}

void TestMigrationController::registersItsMessageTypes()
{
    ControllerRig rig;
    QCOMPARE(rig.controller.name(), QStringLiteral("Velmora::Migration::MigrationController"));
    const QList<Message::MessageType> expected = {Message::CleanDisk, Message::FileCopyResponse, Message::FileList,
        Message::MigrationBootability, Message::PartitionCreate, Message::PartitionFormat, Message::PartitionRemove,
        Message::MigrationFilterTypeResponse, Message::MigrationFilterSystemPaths};
    QCOMPARE(rig.controller.messageTypes(), expected);
    QCOMPARE(rig.controller.watchdogTimeout(), 120000);
    QCOMPARE(rig.controller.migration(), rig.model);
}

void TestMigrationController::nothingMarkedFinishesAtOnce()
{
    ControllerRig rig;
    rig.choose();
    for (int id = 1; id <= 5; ++id)
        rig.plan()->migrationPartition(id)->setMigrate(false);
    rig.frames.clear();
    LogCapture log;

    rig.model->startMigration();
    QCOMPARE(rig.model->migrationStep(), Steps::Finished);
    QCOMPARE(rig.finished, 1);
    QVERIFY(rig.frames.isEmpty());
    QVERIFY(!rig.controller.isWatchdogActive());
    QCOMPARE(rig.systemReads, 1);
    QCOMPARE(log.count(QStringLiteral("There are no partitions in source disk that are marked for migartion")), 1);
    QCOMPARE(log.count(QStringLiteral("Migration has been started")), 0);
}

void TestMigrationController::fullRunInStrictOrder()
{
    ControllerRig rig;
    rig.choose();
    LogCapture log;
    rig.model->startMigration();
    QVERIFY(rig.controller.isWatchdogActive());
    rig.serve();

    // MSR has no file system and isn't formatted; EFI is formatted but not copied.
    const QList<int> expected = {63, 60, 60, 60, 60, 60, 62, 62, 62, 62, 70, 70, 70, 73};
    QCOMPARE(rig.types(), expected);
    QCOMPARE(rig.steps, QList<int>({Steps::InitializingDestinationDisk, Steps::CreatingPartitions,
                            Steps::FormattingPartitions, Steps::CopyingFiles, Steps::FixingBootability, Steps::Finished}));
    QCOMPARE(rig.finished, 1);
    QVERIFY(rig.failures.isEmpty());
    QVERIFY(!rig.controller.isWatchdogActive());
    QCOMPARE(rig.systemReads, 1);
    QCOMPARE(rig.model->copiedSize().value(), 40 * GiB + 120 * GiB + 400 * MiB);
    QCOMPARE(rig.model->totalSize().value(), 30 * MiB + 40 * GiB + 120 * GiB + 400 * MiB);
    QCOMPARE(log.count(QStringLiteral("Partition 102 on destination disk will not be formatted as it is a raw partition "
                                      "on source disk (i.e. MSR, Extended)")),
        1);
    QCOMPARE(log.count(QStringLiteral("Partition 101 is BOOT only and its content will not be copied")), 1);
    QCOMPARE(log.count(QStringLiteral("Source disk contains operating system, bootability fix is required")), 1);
    QCOMPARE(log.count(QStringLiteral("Sending migration bootability message: (Drive: 2, Boot partition: 101, OS partition: 103)")), 1);
    QCOMPARE(log.count(QStringLiteral("Migration has finished")), 1);
    const QStringList recreated = {QStringLiteral("Following source disk partitions will be recreated:"),
        QStringLiteral(" - Partition 1"), QStringLiteral(" - Partition 2"), QStringLiteral(" - Partition 3"), QStringLiteral(" - Partition 4"),
        QStringLiteral(" - Partition 5")};
    const QStringList info = log.messages(Velmora::Logger::Info);
    const int at = info.indexOf(recreated.first());
    QVERIFY(at >= 0);
    QCOMPARE(info.mid(at, recreated.size()), recreated);
}

void TestMigrationController::requestsCarryThePlan()
{
    ControllerRig rig;
    rig.choose();
    MigrationDestPartition* os = rig.plan()->migrationPartition(3);
    os->extensionsFilter()->group(Velmora::System::FileCategory::Video)->setChecked(false);
    rig.model->startMigration();
    rig.serve();

    const auto clean = rig.sent<pb::CleanDisk>(0);
    QCOMPARE(clean.driveid(), 2u);
    QCOMPARE(clean.partitionstyle(), pb::CleanDisk::GPT);

    const auto create = rig.sent<pb::PartitionCreate>(3);
    QCOMPARE(create.driveid(), 2u);
    QCOMPARE(create.partition().id(), 3u);
    QCOMPARE(qint64(create.partition().offset()), 117 * MiB);
    QCOMPARE(qint64(create.partition().size()), 81193 * MiB);
    QCOMPARE(create.partition().type(), pb::PartitionInfo::GPT);
    QCOMPARE(create.partition().gpttype(), std::string("ebd0a0a2-b9e5-4433-87c0-68b6b72699c7"));
    QCOMPARE(create.partition().mbrtype(), 7u);
    const auto efi = rig.sent<pb::PartitionCreate>(1);
    QVERIFY(!efi.partition().isbootable());
    QVERIFY(efi.partition().letter().empty() && efi.partition().used() == 0);

    const auto format = rig.sent<pb::PartitionFormat>(7);
    QCOMPARE(format.driveid(), 2u);
    QCOMPARE(format.partition().id(), 103u);
    QCOMPARE(format.partition().filesystem(), std::string("NTFS"));
    QVERIFY(format.formatoption());
    QCOMPARE(format.partition().size(), 0u);

    const auto copy = rig.sent<pb::FileCopyRequest>(10);
    QCOMPARE(copy.sourcedriveid(), 1u);
    QCOMPARE(copy.sourcepartitionid(), 3u);
    QCOMPARE(copy.destinationdriveid(), 2u);
    QCOMPARE(copy.destinationpartitionid(), 103u);
    QVERIFY(!copy.copyoption());
    const QStringList video = Velmora::System::categoryExtensions(Velmora::System::FileCategory::Video)
                                  .split(QLatin1Char(','), Qt::SkipEmptyParts);
    QCOMPARE(copy.filter().extensions_size(), video.size());
    QCOMPARE(QString::fromStdString(copy.filter().extensions(0)), video.first());
    QCOMPARE(rig.sent<pb::FileCopyRequest>(11).filter().extensions_size(), 0);

    const auto boot = rig.sent<pb::MigrationBootability>(13);
    QCOMPARE(boot.driveid(), 2u);
    QCOMPARE(boot.ospartitionid(), 103u);
    QCOMPARE(boot.bootpartitionid(), 101u);
}

void TestMigrationController::onlyRawPartitions()
{
    ControllerRig rig;
    Drive* source = drive(1, 64 * GiB);
    add(source, 1, Msr, 16 * MiB, 0);
    add(source, 2, Raw, 4 * GiB, 0);
    rig.choose(source);
    LogCapture log;
    rig.model->startMigration();
    rig.serve();
    QCOMPARE(rig.types(), QList<int>({63, 60, 60}));
    QCOMPARE(rig.model->migrationStep(), Steps::Finished);
    QCOMPARE(rig.finished, 1);
    QCOMPARE(log.count(QStringLiteral("There are no partitions to be formatted, finishing migration")), 1);
}

void TestMigrationController::onlyEfiAndMsr_data()
{
    QTest::addColumn<QString>("msrFileSystem");
    QTest::addColumn<QList<int>>("types");
    QTest::newRow("msr raw") << QString() << QList<int>({63, 60, 60, 62});
    QTest::newRow("msr with a file system") << QStringLiteral("NTFS") << QList<int>({63, 60, 60, 62, 62});
}

void TestMigrationController::onlyEfiAndMsr()
{
    QFETCH(QString, msrFileSystem);
    QFETCH(QList<int>, types);

    ControllerRig rig;
    Drive* source = drive(1, 64 * GiB);
    add(source, 1, Efi, 100 * MiB, 30 * MiB);
    add(source, 2, Msr, 16 * MiB, 0)->setFileSystem(msrFileSystem);
    rig.choose(source);
    LogCapture log;
    rig.model->startMigration();
    rig.serve();
    QCOMPARE(rig.types(), types);
    QCOMPARE(rig.model->migrationStep(), Steps::Finished);
    QCOMPARE(log.count(QStringLiteral("There are no partitions to be copied, finishing migration")), 1);
    QCOMPARE(log.count(QStringLiteral("Partition 101 is BOOT only and its content will not be copied")), 1);
    QCOMPARE(log.count(QStringLiteral("Partition 102 is Microsoft Reserved and its content will not be copied")),
        msrFileSystem.isEmpty() ? 0 : 1);
}

void TestMigrationController::bootPartitionWithoutSystemNeedsNoFix()
{
    ControllerRig rig;
    Drive* source = drive(1, 64 * GiB);
    add(source, 1, Efi, 100 * MiB, 30 * MiB);
    add(source, 2, Data, 20 * GiB, 5 * GiB, QStringLiteral("D:"));
    rig.choose(source);
    rig.model->startMigration();
    rig.serve();
    QCOMPARE(rig.types(), QList<int>({63, 60, 60, 62, 62, 70}));
    QCOMPARE(rig.model->migrationStep(), Steps::Finished);
}

void TestMigrationController::copyProgressAddsFinishedPartitions()
{
    ControllerRig rig;
    rig.choose();
    runToFirstCopy(rig);
    QSignalSpy progress(rig.model, &Velmora::Migration::Migration::progressChanged);
    rig.answerCopy(0, 10 * GiB, {QStringLiteral("C:\\locked.sys")});
    QCOMPARE(rig.model->copiedSize().value(), 10 * GiB);
    rig.answerCopy(1, 5 * GiB);
    QCOMPARE(rig.model->copiedSize().value(), 15 * GiB);
    rig.answerCopy(1, 6 * GiB);
    QCOMPARE(rig.model->copiedSize().value(), 16 * GiB);
    QCOMPARE(progress.count(), 3);
    QCOMPARE(rig.model->migrationStep(), Steps::CopyingFiles);
}

void TestMigrationController::cancelWhileCreating()
{
    ControllerRig rig;
    rig.choose();
    rig.model->startMigration();
    rig.answerClean();
    rig.answerCreate();
    const int sent = rig.frames.size();
    LogCapture log;

    rig.model->cancelMigration();
    QCOMPARE(rig.frames.size(), sent);
    QCOMPARE(rig.model->migrationStep(), Steps::Canceled);
    QVERIFY(rig.failures.isEmpty());
    QVERIFY(rig.controller.isWatchdogActive());
    QCOMPARE(log.count(QStringLiteral("Waiting for current operation to complete")), 1);
    QCOMPARE(log.count(QStringLiteral("Migration canceled while executing step: Creating partitions")), 1);

    rig.answerCreate();
    QCOMPARE(rig.frames.size(), sent);
    QCOMPARE(rig.failures, QStringList{QStringLiteral("MIGRATION WAS CANCELED")});
    QCOMPARE(rig.model->migrationStep(), Steps::Canceled);
    QVERIFY(!rig.controller.isWatchdogActive());
    QCOMPARE(rig.systemReads, 1);
    QCOMPARE(log.count(QStringLiteral("Migration canceled confirmation received, emiting notification")), 1);
}

void TestMigrationController::cancelWhileCopying()
{
    ControllerRig rig;
    rig.choose();
    runToFirstCopy(rig);
    const int sent = rig.frames.size();

    rig.model->cancelMigration();
    QCOMPARE(rig.frames.size(), sent + 1);
    QCOMPARE(rig.frames.last(), ControllerRig::Frame(71, QByteArray()));
    QVERIFY(rig.failures.isEmpty());

    // The copy still reports until the service has stopped it.
    rig.answerCopy(1, 3 * GiB);
    QCOMPARE(rig.model->copiedSize().value(), 3 * GiB);
    QCOMPARE(rig.frames.size(), sent + 1);
    QVERIFY(rig.failures.isEmpty());

    rig.answerCopy(2, 0);
    QCOMPARE(rig.frames.size(), sent + 1);
    QCOMPARE(rig.failures, QStringList{QStringLiteral("MIGRATION WAS CANCELED")});
    QCOMPARE(rig.model->migrationStep(), Steps::Canceled);
    QVERIFY(!rig.controller.isWatchdogActive());
}

void TestMigrationController::cancelFromIdle()
{
    ControllerRig rig;
    rig.choose();
    LogCapture log;
    rig.model->cancelMigration();
    QCOMPARE(rig.model->migrationStep(), Steps::Canceled);
    QVERIFY(rig.frames.isEmpty());
    QCOMPARE(log.count(QStringLiteral("Waiting for current operation to complete")), 1);
    rig.model->startMigration();
    QCOMPARE(rig.failures, QStringList{QStringLiteral("INVALID STATE")});

    rig.model->resetToDefaults();
    rig.model->setSourceDriveId(1);
    rig.model->setDestDriveId(2);
    rig.frames.clear();
    rig.model->startMigration();
    rig.serve();
    // The cancel of before doesn't reach into the new run.
    QCOMPARE(rig.model->migrationStep(), Steps::Finished);
    QCOMPARE(rig.failures.size(), 1);
}

void TestMigrationController::failures_data()
{
    QTest::addColumn<int>("failingType");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("logLine");

    QTest::newRow("clean") << 63 << 3 << "FAILED TO CLEAN DISK ON DESTINATION DRIVE."
                           << "Faild to clean disk on destination drive.";
    QTest::newRow("create") << 60 << 4 << "FAILED TO CREATE PARTITION ON DESTINATION DRIVE (4)."
                            << "Faild to create partition on destination drive (4).";
    QTest::newRow("format") << 62 << 5 << "FAILED TO FORMAT PARTITION ON DESTINATION DRIVE (5)."
                            << "Faild to format partition on destination drive (5).";
    QTest::newRow("copy") << 70 << 3 << "FAILED TO COPY FILES (3)." << "Faild to copy files (3).";
    QTest::newRow("boot") << 73 << 6 << "FAILED TO CONFIGURE BOOT OPTIONS (6)." << "Faild to configure boot options (6).";
}

void TestMigrationController::failures()
{
    QFETCH(int, failingType);
    QFETCH(int, code);
    QFETCH(QString, text);
    QFETCH(QString, logLine);

    ControllerRig rig;
    rig.choose();
    rig.model->startMigration();
    rig.serve([failingType](int type) { return type == failingType; });
    QCOMPARE(rig.types().last(), failingType);
    const int sent = rig.frames.size();
    LogCapture log;

    switch (failingType) {
    case 63: rig.answerClean(code); break;
    case 60: rig.answerCreate(code); break;
    case 62: rig.answerFormat(code); break;
    case 70: rig.answerCopy(code, 0); break;
    default: rig.answerBoot(code); break;
    }
    QCOMPARE(rig.failures, QStringList{text});
    // The step was final before the text went out.
    QCOMPARE(rig.stepsAtFailure, QList<int>{Steps::Failed});
    QCOMPARE(rig.frames.size(), sent);
    QVERIFY(!rig.controller.isWatchdogActive());
    QCOMPARE(rig.systemReads, 1);
    QCOMPARE(log.messages(Velmora::Logger::Error), QStringList({logLine, QStringLiteral("Migration process failed")}));
}

void TestMigrationController::watchdogEndsASilentRun()
{
    ControllerRig rig;
    rig.choose();
    LogCapture log;
    rig.controller.setWatchdogTimeout(5);
    QCOMPARE(log.count(QStringLiteral("Migration watchdog timeout changed to: 5")), 1);
    rig.model->startMigration();
    rig.answerClean();
    QTRY_COMPARE(rig.failures, QStringList{QStringLiteral("SERVICE IS NOT RESPONSIVE.")});
    QCOMPARE(rig.model->migrationStep(), Steps::Failed);
    QCOMPARE(rig.systemReads, 1);
    QCOMPARE(log.count(QStringLiteral("Migration task is failed due to watchdog timeout (5 ms)")), 1);

    // A cancel that the service never confirms ends the same way, with both texts.
    ControllerRig second;
    second.choose();
    second.controller.setWatchdogTimeout(5);
    runToFirstCopy(second);
    second.model->cancelMigration();
    QTRY_COMPARE(second.failures,
        QStringList({QStringLiteral("MIGRATION WAS CANCELED"), QStringLiteral("SERVICE IS NOT RESPONSIVE.")}));
    QCOMPARE(second.model->migrationStep(), Steps::Canceled);
}

void TestMigrationController::everyMessageRestartsTheWatchdog()
{
    ControllerRig rig;
    rig.choose();
    LogCapture log;
    rig.deliver(Message::PartitionRemove, QByteArray());
    QVERIFY(!rig.controller.isWatchdogActive());
    QCOMPARE(log.count(QStringLiteral("Unhandled message type: PartitionRemove.")), 1);

    rig.controller.setWatchdogTimeout(100000);
    rig.model->startMigration();
    QTest::qWait(20);
    const int before = rig.controller.watchdogRemainingTime();
    rig.deliver(Message::PartitionRemove, QByteArray());
    QVERIFY2(rig.controller.watchdogRemainingTime() > before, qPrintable(QStringLiteral("%1 %2").arg(before).arg(rig.controller.watchdogRemainingTime())));
    QVERIFY(rig.failures.isEmpty());
}

void TestMigrationController::unknownPartitionsStopTheChain_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("logLine");
    QTest::newRow("create") << 60 << "Fatal error: Partition create message referenced unknown partition: 42";
    QTest::newRow("format") << 62 << "Fatal error: Partition format message referenced unknown partition: 42";
}

void TestMigrationController::unknownPartitionsStopTheChain()
{
    QFETCH(int, type);
    QFETCH(QString, logLine);

    ControllerRig rig;
    rig.choose();
    rig.model->startMigration();
    rig.serve([type](int sent) { return sent == type; });
    const int sent = rig.frames.size();
    const auto step = rig.model->migrationStep();
    LogCapture log;

    pb::PartitionCreate create;
    create.mutable_partition()->set_id(42);
    create.set_newpartitionid(7);
    pb::PartitionFormat format;
    format.mutable_partition()->set_id(42);
    rig.deliver(static_cast<Message::MessageType>(type),
        type == 60 ? ControllerRig::bytes(create) : ControllerRig::bytes(format));
    QCOMPARE(log.messages(Velmora::Logger::Error), QStringList{logLine});
    QCOMPARE(rig.frames.size(), sent);
    QCOMPARE(rig.model->migrationStep(), step);
    QVERIFY(rig.failures.isEmpty());
    QVERIFY(rig.controller.isWatchdogActive());
}

void TestMigrationController::unparsablePayloads_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("logLine");
    QTest::newRow("clean") << 63 << "Parsing clean disk message failed.";
    QTest::newRow("create") << 60 << "Parsing file copy report message failed.";
    QTest::newRow("format") << 62 << "Parsing file copy report message failed.";
    QTest::newRow("copy") << 72 << "Parsing file copy report message failed.";
    QTest::newRow("boot") << 73 << "Parsing migration bootability message failed.";
    QTest::newRow("system paths") << 38 << "Parsing FileTypeStructure message failed.";
    QTest::newRow("filtered size") << 36 << "Parsing FileTypeStructure message failed.";
    QTest::newRow("file list") << 10 << "Parsing file list message failed.";
}

void TestMigrationController::unparsablePayloads()
{
    QFETCH(int, type);
    QFETCH(QString, logLine);

    ControllerRig rig;
    rig.choose();
    rig.model->startMigration();
    const int sent = rig.frames.size();
    LogCapture log;
    rig.deliver(static_cast<Message::MessageType>(type), QByteArray("\xff\xff\xff", 3));
    QCOMPARE(log.messages(Velmora::Logger::Error), QStringList{logLine});
    QCOMPARE(rig.frames.size(), sent);
    QCOMPARE(rig.model->migrationStep(), Steps::InitializingDestinationDisk);
    QVERIFY(rig.failures.isEmpty());
}

void TestMigrationController::systemPathsOneAtATime()
{
    ControllerRig rig;
    rig.system.addDrive(exampleSource());
    rig.system.addDrive(drive(2, ExampleCapacity, true, nullptr, QStringLiteral("BRANTEL N1")));
    rig.model->setDestDriveId(2);
    rig.model->setSourceDriveId(1);
    QList<int> pathRequests;
    for (const auto& frame : rig.frames) {
        if (frame.first == Message::MigrationFilterSystemPaths)
            pathRequests.append(frame.first);
    }
    QCOMPARE(pathRequests.size(), 1);
    const auto first = rig.sent<pb::MigrationFilterSystemPaths>(rig.types().indexOf(38));
    QCOMPARE(first.driveid(), 1u);
    QCOMPARE(first.partitionid(), 1u);

    QSignalSpy ready(rig.plan(), &MigrationDestDrive::initialized);
    for (quint32 id = 1; id <= 5; ++id) {
        rig.frames.clear();
        pb::MigrationFilterSystemPaths answer;
        answer.set_driveid(1);
        answer.set_partitionid(id);
        if (id == 3) {
            answer.add_systempaths("C:\\Windows");
            answer.add_systemignoredpaths("C:\\pagefile.sys");
        }
        rig.deliver(Message::MigrationFilterSystemPaths, ControllerRig::bytes(answer));
        QVERIFY(rig.plan()->migrationPartition(int(id))->isInitialized());
        const QList<int> types = rig.types();
        if (id < 5) {
            const auto next = rig.sent<pb::MigrationFilterSystemPaths>(types.lastIndexOf(38));
            QCOMPARE(next.partitionid(), id + 1);
        } else {
            QVERIFY(!types.contains(38));
        }
        if (id == 3) {
            // The branch of the system path is asked for, then the root once initialized.
            QCOMPARE(types.count(11), 2);
        }
    }
    QCOMPARE(ready.count(), 1);
    Velmora::Migration::FileSystemFilter* tree = rig.plan()->migrationPartition(3)->fileSystemFilter();
    QCOMPARE(tree->systemPaths(), QStringList{QStringLiteral("C:\\Windows")});
    QCOMPARE(tree->systemIgnoredPaths(), QStringList{QStringLiteral("C:\\pagefile.sys")});
    QVERIFY(tree->nodeForPath(QStringLiteral("C:\\Windows"))->isLocked());
}

void TestMigrationController::systemPathsForUnknownPartitions_data()
{
    QTest::addColumn<quint32>("driveId");
    QTest::addColumn<quint32>("partitionId");
    QTest::newRow("unknown partition") << 1u << 42u;
    QTest::newRow("another drive") << 7u << 1u;
}

void TestMigrationController::systemPathsForUnknownPartitions()
{
    QFETCH(quint32, driveId);
    QFETCH(quint32, partitionId);

    ControllerRig rig;
    rig.choose();
    pb::MigrationFilterSystemPaths answer;
    answer.set_driveid(driveId);
    answer.set_partitionid(partitionId);
    answer.add_systempaths("C:\\Windows");
    LogCapture log;
    rig.deliver(Message::MigrationFilterSystemPaths, ControllerRig::bytes(answer));
    // Nothing is taken from it, but the queue moves on to the next question.
    for (int id = 1; id <= 5; ++id) {
        QVERIFY(!rig.plan()->migrationPartition(id)->isInitialized());
        QVERIFY(rig.plan()->migrationPartition(id)->fileSystemFilter()->systemPaths().isEmpty());
    }
    QCOMPARE(rig.types(), QList<int>{38});
    QCOMPARE(rig.sent<pb::MigrationFilterSystemPaths>(0).partitionid(), 2u);
    QVERIFY(log.messages(Velmora::Logger::Error).isEmpty());
}

void TestMigrationController::systemPathsErrorBlocksTheQueue_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("errors");
    QTest::newRow("busy") << 2 << QStringList();
    QTest::newRow("failure") << 3 << QStringList{QStringLiteral("Error getting system paths 3")};
}

void TestMigrationController::systemPathsErrorBlocksTheQueue()
{
    QFETCH(int, code);
    QFETCH(QStringList, errors);

    ControllerRig rig;
    rig.controller.setSystemPathsRetryInterval(1);
    rig.choose();
    LogCapture log;
    pb::MigrationFilterSystemPaths answer;
    answer.set_code(static_cast<pb::Code>(code));
    answer.set_driveid(1);
    answer.set_partitionid(1);
    rig.deliver(Message::MigrationFilterSystemPaths, ControllerRig::bytes(answer));
    QCOMPARE(log.messages(Velmora::Logger::Error), errors);
    QVERIFY(!rig.plan()->migrationPartition(1)->isInitialized());
    QVERIFY(rig.frames.isEmpty());

    // A new question waits behind the flag and keeps polling; nothing goes out.
    QMetaObject::invokeMethod(&rig.controller, "sendFilterSystemPathRequest");
    QTest::qWait(10);
    QVERIFY(!rig.types().contains(38));
}

void TestMigrationController::fileListsReachTheTree()
{
    ControllerRig rig;
    rig.choose();
    MigrationDestPartition* os = rig.plan()->migrationPartition(3);
    os->markInitialized();
    os->setFiltersChanged(true);
    QCOMPARE(rig.types(), QList<int>{11});
    QCOMPARE(QString::fromStdString(rig.sent<pb::FileListRequest>(0).dirpath()), QStringLiteral("C:\\"));

    pb::FileList list;
    list.set_path("c:\\");
    (*list.mutable_directories())["Users\\"] = 500;
    (*list.mutable_directories())["Windows"] = 900;
    (*list.mutable_files())["pagefile.sys"] = 8 * GiB;
    rig.deliver(Message::FileList, ControllerRig::bytes(list));
    Velmora::Migration::FileSystemFilter* tree = os->fileSystemFilter();
    QCOMPARE(tree->rowCount(), 3);
    QCOMPARE(tree->index(0, 0).data().toString(), QStringLiteral("Users"));
    QCOMPARE(tree->index(2, 1).data().toString(), QStringLiteral("8.00 GB"));
    QVERIFY(!os->filtersChanged());

    // D: isn't initialized and a list of another letter goes nowhere.
    LogCapture log;
    list.set_path("D:\\");
    rig.deliver(Message::FileList, ControllerRig::bytes(list));
    QCOMPARE(rig.plan()->migrationPartition(4)->fileSystemFilter()->rowCount(), 0);
    list.set_path("C:\\Nowhere\\");
    rig.deliver(Message::FileList, ControllerRig::bytes(list));
    QCOMPARE(log.messages(Velmora::Logger::Error),
        QStringList({QStringLiteral("Trying to add dirs to not existing node [C:\\Nowhere\\]."),
            QStringLiteral("Node 'C:\\Nowhere\\' does not exist.")}));
}

void TestMigrationController::filteredSizeRequest()
{
    ControllerRig rig;
    rig.choose();
    MigrationDestPartition* data = rig.plan()->migrationPartition(4);
    data->markInitialized();
    pb::FileList list;
    list.set_path("D:\\");
    (*list.mutable_directories())["Films"] = 500;
    (*list.mutable_directories())["Work"] = 900;
    rig.deliver(Message::FileList, ControllerRig::bytes(list));
    Velmora::Migration::FileSystemFilter* tree = data->fileSystemFilter();
    tree->setSystemPaths({QStringLiteral("D:\\Work\\Keep")});
    tree->setSystemIgnoredPaths({QStringLiteral("D:\\$Trash")});
    tree->setData(tree->index(0, 0), Qt::Unchecked, Qt::CheckStateRole);
    data->extensionsFilter()->group(Velmora::System::FileCategory::Sound)->setChecked(false);
    rig.frames.clear();

    data->calculateFilteredFilesSize();
    QCOMPARE(rig.types(), QList<int>{37});
    const auto request = rig.sent<pb::FileTypeStructureRequest>(0);
    QCOMPARE(request.driveid(), 1u);
    QCOMPARE(request.partitionid(), 4);
    QCOMPARE(request.action(), pb::FileTypeStructureRequest::Start);
    QCOMPARE(request.filetypes_size(), 3);
    QCOMPARE(request.filetypes(0).id(), 0u);
    QCOMPARE(request.filetypes(0).paths(), std::string("D:\\Work\\Keep"));
    QCOMPARE(request.filetypes(1).id(), 1u);
    QCOMPARE(request.filetypes(1).paths(), std::string("D:\\Films,D:\\$Trash"));
    QCOMPARE(request.filetypes(2).id(), 2u);
    QCOMPARE(QString::fromStdString(request.filetypes(2).extensions()),
        data->extensionsFilter()->group(Velmora::System::FileCategory::Sound)->filteredExtensions().join(QLatin1Char(',')));
    QVERIFY(request.filetypes(2).paths().empty());

    LogCapture log;
    rig.frames.clear();
    QMetaObject::invokeMethod(&rig.controller, "onRequestFilteredPartitionSize", Q_ARG(int, 42));
    QVERIFY(rig.frames.isEmpty());
    QCOMPARE(log.messages(Velmora::Logger::Error), QStringList{QStringLiteral("Partition does not exist (1/42)")});

    rig.model->stopFilteredSizeRequests();
    QCOMPARE(rig.types(), QList<int>{37});
    const auto stop = rig.sent<pb::FileTypeStructureRequest>(0);
    QCOMPARE(stop.action(), pb::FileTypeStructureRequest::Stop);
    QCOMPARE(stop.filetypes_size(), 0);
}

void TestMigrationController::filteredSizeReports_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<quint32>("driveId");
    QTest::addColumn<bool>("withSizes");
    QTest::addColumn<qint64>("used");
    QTest::addColumn<int>("progress");
    QTest::addColumn<bool>("calculating");
    QTest::addColumn<QString>("logLine");

    QTest::newRow("progress") << 7 << 1u << true << qint64(7000) << 25 << true << QString();
    QTest::newRow("final") << 0 << 1u << true << qint64(7000) << 25 << false
                           << "Partition 4 used size was updated after filters evaluation: 6.84 KB";
    QTest::newRow("final without sizes") << 0 << 1u << false << qint64(0) << 0 << false << QString();
    QTest::newRow("another drive") << 7 << 3u << true << qint64(0) << 0 << true
                                   << "FileTypeStructure report send for wrong drive or partition 3/4, current drive 1.";
    QTest::newRow("error code") << 5 << 1u << true << qint64(0) << 0 << true << "Calculating filtered files size error 5";
}

void TestMigrationController::filteredSizeReports()
{
    QFETCH(int, code);
    QFETCH(quint32, driveId);
    QFETCH(bool, withSizes);
    QFETCH(qint64, used);
    QFETCH(int, progress);
    QFETCH(bool, calculating);
    QFETCH(QString, logLine);

    ControllerRig rig;
    rig.choose();
    MigrationDestPartition* data = rig.plan()->migrationPartition(4);
    data->setFiltersChanged(true);
    data->calculateFilteredFilesSize();
    LogCapture log;

    pb::FileTypeStructure report;
    report.set_code(static_cast<pb::Code>(code));
    report.set_driveid(driveId);
    report.set_partitionid(4);
    report.set_progress(0.254f);
    if (withSizes) {
        for (quint32 id : {0u, 1u, 2u}) {
            auto* type = report.add_filetypes();
            type->set_id(id);
            type->set_size(id == 0 ? 5000 : id == 1 ? 999999 : 2000);
        }
    }
    rig.deliver(Message::MigrationFilterTypeResponse, ControllerRig::bytes(report));
    QCOMPARE(data->used().value(), used);
    QCOMPARE(data->calculationProgress(), progress);
    QCOMPARE(data->isCalculating(), calculating);
    QCOMPARE(data->filtersChanged(), calculating);
    QStringList lines = log.messages(Velmora::Logger::Info) + log.messages(Velmora::Logger::Error);
    QCOMPARE(lines, logLine.isEmpty() ? QStringList() : QStringList{logLine});
}

KESTRAVIN_TEST_MAIN(TestMigrationController)
#include "tst_migrationcontroller.moc"
