#include "ControllerRig.h"
#include "migration/ExtensionsFilter.h"
#include "migration/FileExtGroup.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/FileCategories.h"


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

    void fullRunInStrictOrder();
    void requestsCarryThePlan();
    void cancelWhileCopying();
    void failures_data();
    void failures();
    void watchdogEndsASilentRun();

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
    QCOMPARE(log.count(QStringLiteral("Source disk contains operating system, bootability fix is required")), 1);
    QCOMPARE(log.count(QStringLiteral("Sending migration bootability message: (Drive: 2, Boot partition: 101, OS partition: 103)")), 1);
    QCOMPARE(log.count(QStringLiteral("Migration has finished")), 1);
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
}

KESTRAVIN_TEST_SUITE(TestMigrationController)
#include "tst_migrationcontroller.moc"
