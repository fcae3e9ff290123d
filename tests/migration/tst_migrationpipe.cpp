#include "PlanBuilder.h"
#include "communication/Dispatcher.h"
#include "communication/NamedPipeClient.h"
#include "migration/FileSystemFilter.h"
#include "migration/FileSystemNode.h"
#include "migration/Migration.h"
#include "migration/MigrationController.h"
#include "support/FakeService.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include "FileList.pb.h"
#include "Migration.pb.h"

#include <QSignalSpy>
#include <QTest>

using namespace PlanBuilder;
using Velmora::Communication::Dispatcher;
using Velmora::Communication::NamedPipeClient;
using Velmora::Message::Message;
namespace pb = Velmora::Message;
namespace Steps = Velmora::Migration;

namespace {

template <typename T>
T parsed(const QByteArray& payload)
{
    T message;
    message.ParseFromArray(payload.constData(), payload.size());
    return message;
}

template <typename T>
QByteArray bytes(const T& message)
{
    return QByteArray::fromStdString(message.SerializeAsString());
}

// Plays a willing service on the far end of the pipe: every request gets its success answer, a
// copy reports half of its partition first, and each directory lists one folder and one file.
class ScriptedService : public QObject
{
public:
    explicit ScriptedService(FakeService& service)
        : m_service(service)
    {
        connect(&service, &FakeService::frameReceived, this, &ScriptedService::answer);
    }

    QList<int> received;
    qint64 halfCopied = 0;

private:
    void answer(quint32 type, const QByteArray& payload)
    {
        received.append(int(type));
        switch (type) {
        case Message::MigrationFilterSystemPaths: {
            auto message = parsed<pb::MigrationFilterSystemPaths>(payload);
            if (message.partitionid() == 3)
                message.add_systempaths("C:\\Windows");
            m_service.sendFrame(type, bytes(message));
            break;
        }
        case Message::FileListRequest: {
            const auto request = parsed<pb::FileListRequest>(payload);
            pb::FileList list;
            list.set_path(request.dirpath());
            (*list.mutable_directories())["Folder"] = 4096;
            (*list.mutable_files())["file.txt"] = 100;
            m_service.sendFrame(Message::FileList, bytes(list));
            break;
        }
        case Message::CleanDisk:
        case Message::PartitionFormat:
        case Message::MigrationBootability:
            // The request itself, with code 0, is the answer.
            m_service.sendFrame(type, payload);
            break;
        case Message::PartitionCreate: {
            auto message = parsed<pb::PartitionCreate>(payload);
            message.set_newpartitionid(message.partition().id() + 100);
            m_service.sendFrame(type, bytes(message));
            break;
        }
        case Message::FileCopyRequest: {
            pb::FileCopyReport report;
            report.set_code(pb::PROGRESS);
            report.set_copiedsize(GiB);
            m_service.sendFrame(Message::FileCopyResponse, bytes(report));
            report.set_code(pb::SUCCESS);
            report.set_copiedsize(2 * GiB);
            m_service.sendFrame(Message::FileCopyResponse, bytes(report));
            break;
        }
        default:
            break;
        }
    }

    FakeService& m_service;
};

} // namespace

class TestMigrationPipe : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void fullRunOverThePipe();
};

void TestMigrationPipe::initTestCase()
{
    Velmora::Logger::setConsoleEnabled(false);
    qRegisterMetaType<Message::MessageType>();
}

void TestMigrationPipe::fullRunOverThePipe()
{
    FakeService service(TestEnvironment::uniqueName(QStringLiteral("migration")));
    QVERIFY(service.listen());
    ScriptedService script(service);

    Velmora::System::System system;
    system.addDrive(exampleSource(&system));
    system.addDrive(drive(2, ExampleCapacity, true, &system, QStringLiteral("BRANTEL N1")));
    Velmora::System::SystemManager manager(&system);
    Velmora::Migration::MigrationController controller(&manager, &system);
    NamedPipeClient client;
    client.setServerName(service.serverName());
    Dispatcher dispatcher;
    connect(&client, &NamedPipeClient::messageReceived, &dispatcher, &Dispatcher::dispatchMessage);
    connect(&dispatcher, &Dispatcher::sendMessageToClient, &client, &NamedPipeClient::sendMessage);
    dispatcher.registerHandler(&controller);
    QSignalSpy connected(&client, &NamedPipeClient::connectedToServer);
    client.connectToServer();
    QTRY_COMPARE(connected.count(), 1);

    Velmora::Migration::Migration* model = controller.migration();
    model->setSourceDriveId(1);
    model->setDestDriveId(2);
    MigrationDestDrive* plan = model->destinationDrive();
    QSignalSpy ready(plan, &MigrationDestDrive::initialized);
    QTRY_VERIFY(plan->allPartitionsInitialized());
    QCOMPARE(ready.count(), 1);
    // C: got its locked branch and its root listing through the pipe.
    Velmora::Migration::FileSystemFilter* tree = plan->migrationPartition(3)->fileSystemFilter();
    QTRY_VERIFY(tree->nodeForPath(QStringLiteral("C:\\file.txt")));
    QVERIFY(tree->nodeForPath(QStringLiteral("C:\\Windows"))->isLocked());

    QSignalSpy finished(model, &Velmora::Migration::Migration::migrationFinished);
    QSignalSpy progress(model, &Velmora::Migration::Migration::progressChanged);
    script.received.clear();
    model->startMigration();
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(model->migrationStep(), Steps::Finished);

    QList<int> run;
    for (int type : qAsConst(script.received)) {
        if (type == 63 || type == 60 || type == 62 || type == 70 || type == 73)
            run.append(type);
    }
    QCOMPARE(run, QList<int>({63, 60, 60, 60, 60, 60, 62, 62, 62, 62, 70, 70, 70, 73}));
    // Three partitions, each first 1 GiB along, then 2 GiB done.
    QCOMPARE(progress.count(), 6);
    QCOMPARE(model->copiedSize().value(), 6 * GiB);
    QVERIFY(!controller.isWatchdogActive());
}

KESTRAVIN_TEST_MAIN(TestMigrationPipe)
#include "tst_migrationpipe.moc"
