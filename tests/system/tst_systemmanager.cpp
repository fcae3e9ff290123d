#include "SystemInfoBuilder.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/FileCategories.h"
#include "system/Partition.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include "FileTypeStructure.pb.h"

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

    void updatesPartitionsInPlace();
    void takesUnknownPartitionStylesAsRaw_data();
    void takesUnknownPartitionStylesAsRaw();
    void followsFileCategoryScans_data();
    void followsFileCategoryScans();

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

void TestSystemManager::takesUnknownPartitionStylesAsRaw_data()
{
    QTest::addColumn<int>("wireType");
    QTest::addColumn<int>("modelType");
    QTest::newRow("MBR") << 0 << int(Partition::MBR);
    QTest::newRow("GPT") << 1 << int(Partition::GPT);
    QTest::newRow("the model's own unused space") << 3 << int(Partition::RAW);
    QTest::newRow("unknown") << 4242 << int(Partition::RAW);
}

void TestSystemManager::takesUnknownPartitionStylesAsRaw()
{
    QFETCH(int, wireType);
    QFETCH(int, modelType);
    SystemInfoBuilder b;
    auto& ssd = b.drive(1, QStringLiteral("BRANTEL SSD S1"), QStringLiteral("AA11"), 256 * SystemInfoBuilder::GiB);
    SystemInfoBuilder::partition(ssd, 1, SystemInfoBuilder::MiB, 100 * SystemInfoBuilder::MiB, 0)
        .set_type(static_cast<Velmora::Message::PartitionInfo::PartitionType>(wireType));
    m_manager->handleMessage(Message::SystemInfo, b.payload());
    QVERIFY(m_system->drive(1) && m_system->drive(1)->partition(1));
    QCOMPARE(int(m_system->drive(1)->partition(1)->type()), modelType);
}

void TestSystemManager::followsFileCategoryScans_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("finished");
    QTest::addColumn<int>("status");
    QTest::addColumn<double>("progress");
    QTest::addColumn<qint64>("videoSize");
    QTest::addColumn<QString>("logged");

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

KESTRAVIN_TEST_SUITE(TestSystemManager)
#include "tst_systemmanager.moc"
