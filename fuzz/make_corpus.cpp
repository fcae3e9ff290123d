// Writes the seed corpus of every fuzz target into the folder given as the only argument, one
// subfolder a target. The service link's seeds are real traffic: the program's handlers talk to
// the simulated service over a local socket for each built-in scenario, as the integration tests
// do, and every frame each side sends is kept, alone and as the whole stream.

#include "ProgramRig.h"
#include "ScenarioLoader.h"
#include "ServiceServer.h"
#include "SimulatorRig.h"
#include "communicationweb/AdAvabilityResponse.h"
#include "communicationweb/ApplicationUpdateResponse.h"
#include "communicationweb/AuthorizationRequest.h"
#include "communicationweb/AuthorizationResponse.h"
#include "communicationweb/FirmwareResponse.h"
#include "communicationweb/SessionResponse.h"
#include "communicationweb/SupportRequest.h"
#include "communicationweb/SupportResponse.h"
#include "logger/Logger.h"
#include "message/FrameReader.h"
#include "system/SupportedDrivesManager.h"

#include "DiskPerformance.pb.h"
#include "FileList.pb.h"
#include "FileTypeStructure.pb.h"
#include "Migration.pb.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>

#include <cstdio>

using namespace Velmora;
using namespace Velmora::ServiceSim;
using Type = Velmora::Message::Message;
using Velmora::Message::FrameReader;

namespace {

// How long the program and the service talk before the next scenario.
constexpr int ConversationMs = 1500;

class Corpus
{
public:
    explicit Corpus(const QString& root)
        : m_root(root)
    {
    }

    bool add(const QString& target, const QString& name, const QByteArray& bytes)
    {
        const QDir folder(QDir(m_root).filePath(target));
        QFile file(folder.filePath(name));
        if (!folder.mkpath(QStringLiteral(".")) || !file.open(QIODevice::WriteOnly | QIODevice::Truncate)
            || file.write(bytes) != bytes.size()) {
            std::fprintf(stderr, "Cannot write %s\n", qPrintable(file.fileName()));
            m_failed = true;
            return false;
        }
        return true;
    }

    bool failed() const { return m_failed; }

private:
    QString m_root;
    bool m_failed = false;
};

QByteArray bytesOf(const google::protobuf::MessageLite& message)
{
    const std::string bytes = message.SerializeAsString();
    return QByteArray(bytes.data(), static_cast<int>(bytes.size()));
}

// Requests the program sends only on the user's word (a speed test, the migration's steps); the
// service's answers to them are what the program's handlers must parse.
QList<QPair<quint32, QByteArray>> userRequests(Machine& machine)
{
    QList<QPair<quint32, QByteArray>> requests;
    if (machine.systemInfo().drives_size() == 0)
        return requests;
    const auto& drive = machine.systemInfo().drives(0);
    const auto& last = machine.systemInfo().drives(machine.systemInfo().drives_size() - 1);
    const quint32 partitionId = drive.partitions_size() > 0 ? drive.partitions(0).id() : 0;

    Velmora::Message::DiskPerformanceRequest benchmark;
    benchmark.set_driveid(drive.driveid());
    benchmark.set_filesize(1 << 20);
    benchmark.set_blocksize(4096);
    requests.append({Type::DiskBenchmarkRequest, bytesOf(benchmark)});

    Velmora::Message::FileListRequest list;
    list.set_dirpath(drive.partitions_size() > 0 ? drive.partitions(0).letter() + "\\" : "C:\\");
    requests.append({Type::FileListRequest, bytesOf(list)});

    Velmora::Message::MigrationFilterSystemPaths paths;
    paths.set_driveid(drive.driveid());
    paths.set_partitionid(partitionId);
    requests.append({Type::MigrationFilterSystemPaths, bytesOf(paths)});

    Velmora::Message::FileTypeStructureRequest filtered;
    filtered.set_driveid(drive.driveid());
    filtered.set_partitionid(static_cast<int>(partitionId));
    filtered.set_action(Velmora::Message::FileTypeStructureRequest::Start);
    requests.append({Type::MigrationFilterTypeRequest, bytesOf(filtered)});

    Velmora::Message::CleanDisk clean;
    clean.set_driveid(last.driveid());
    clean.set_partitionstyle(Velmora::Message::CleanDisk::GPT);
    requests.append({Type::CleanDisk, bytesOf(clean)});

    Velmora::Message::PartitionCreate create;
    create.set_driveid(last.driveid());
    if (drive.partitions_size() > 0)
        *create.mutable_partition() = drive.partitions(0);
    requests.append({Type::PartitionCreate, bytesOf(create)});

    Velmora::Message::PartitionFormat format;
    format.set_driveid(last.driveid());
    *format.mutable_partition() = create.partition();
    requests.append({Type::PartitionFormat, bytesOf(format)});

    Velmora::Message::FileCopyRequest copy;
    copy.set_sourcedriveid(drive.driveid());
    copy.set_sourcepartitionid(partitionId);
    copy.set_destinationdriveid(last.driveid());
    copy.set_destinationpartitionid(create.partition().id());
    requests.append({Type::FileCopyRequest, bytesOf(copy)});

    Velmora::Message::MigrationBootability boot;
    boot.set_driveid(last.driveid());
    boot.set_ospartitionid(create.partition().id());
    requests.append({Type::MigrationBootability, bytesOf(boot)});
    return requests;
}

bool recordConversation(const QString& scenario, int index, Corpus& corpus)
{
    Machine machine;
    FaultPlan faults;
    QString error;
    if (!ScenarioLoader::load(scenario, &machine, &faults, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return false;
    }
    SimulatorRig service(machine, FaultPlan());
    ServiceServer server(service.faults, service.timings, &service.router);
    const QString name = QStringLiteral("kestravin-seeds-%1-%2").arg(QCoreApplication::applicationPid()).arg(index);
    if (!server.start(name, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return false;
    }

    QObject owner;
    Fuzz::ProgramRig program(&owner);
    QByteArray requestStream(1, char(index));
    QByteArray answerStream(1, char(63)); // reads of 64 bytes
    int requests = 0;
    int answers = 0;
    auto keepRequest = [&](Type::MessageType type, const QByteArray& payload) {
        const QByteArray frame = FrameReader::encode(type, payload);
        requestStream += frame;
        corpus.add(QStringLiteral("fuzz_service_requests"), QStringLiteral("%1-%2").arg(scenario).arg(++requests),
            QByteArray(1, char(index)) + frame);
    };
    QObject::connect(program.dispatcher, &Communication::Dispatcher::sendMessageToClient, &owner, keepRequest);
    QObject::connect(program.client, &Communication::NamedPipeClient::messageReceived, &owner,
        [&](Type::MessageType type, const QByteArray& payload) {
            const QByteArray frame = FrameReader::encode(type, payload);
            answerStream += frame;
            ++answers;
            corpus.add(QStringLiteral("fuzz_service_input"), QStringLiteral("%1-%2").arg(scenario).arg(answers),
                QByteArray(1, char(answers % 64)) + frame);
        });
    program.client->setServerName(name);
    program.client->connectToServer();

    auto talk = [] {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < ConversationMs)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    };
    talk();
    for (const auto& [type, payload] : userRequests(machine)) {
        keepRequest(static_cast<Type::MessageType>(type), payload);
        program.client->sendMessage(static_cast<Type::MessageType>(type), payload);
    }
    talk();
    corpus.add(QStringLiteral("fuzz_service_requests"), scenario + QStringLiteral("-stream"), requestStream);
    corpus.add(QStringLiteral("fuzz_service_input"), scenario + QStringLiteral("-stream"), answerStream);
    std::printf("%s: %d requests, %d answers\n", qPrintable(scenario), requests, answers);
    return answers > 0;
}

template <typename T>
QByteArray jsonSeed(int choice)
{
    T message;
    return QByteArray(1, char(choice)) + message.toJson().toJson(QJsonDocument::Compact);
}

void addWebSeeds(Corpus& corpus)
{
    // The first byte picks the message in the order the fuzz target lists them.
    const QList<QByteArray> seeds = {jsonSeed<CommunicationWeb::AdAvabilityResponse>(0),
        jsonSeed<CommunicationWeb::ApplicationUpdateResponse>(1), jsonSeed<CommunicationWeb::AuthorizationRequest>(2),
        jsonSeed<CommunicationWeb::AuthorizationResponse>(3), jsonSeed<CommunicationWeb::FirmwareResponse>(4),
        jsonSeed<CommunicationWeb::SessionResponse>(5), jsonSeed<CommunicationWeb::SupportRequest>(6),
        jsonSeed<CommunicationWeb::SupportResponse>(7)};
    for (int i = 0; i < seeds.size(); ++i)
        corpus.add(QStringLiteral("fuzz_web_messages"), QString::number(i), seeds.at(i));
    const QJsonObject entry{{QStringLiteral("model"), QStringLiteral("KESTRAVIN KC600*")},
        {QStringLiteral("firmware"), QStringLiteral("S*")}, {QStringLiteral("smartType"), QStringLiteral("SM2259")}};
    corpus.add(QStringLiteral("fuzz_web_messages"), QStringLiteral("8"),
        QByteArray(1, char(8)) + QJsonDocument(QJsonArray{entry, entry}).toJson(QJsonDocument::Compact));
}

void addCacheSeeds(Corpus& corpus, const QTemporaryDir& scratch)
{
    const System::SupportedDrivesFile file(scratch.filePath(QStringLiteral("supported_drives")));
    const QList<System::SupportedDrive> drives = {{QStringLiteral("KESTRAVIN KC600*"), QStringLiteral("S*"),
        QStringLiteral("SM2259")}, {QStringLiteral("Ωmega SSD"), QStringLiteral("*"), QStringLiteral("PS3111")}};
    QFile written(file.filePath());
    if (file.write(drives) && written.open(QIODevice::ReadOnly))
        corpus.add(QStringLiteral("fuzz_supported_drives_file"), QStringLiteral("two"), written.readAll());
}

void addScenarioSeeds(Corpus& corpus)
{
    for (const QString& name : ScenarioLoader::builtInNames()) {
        QFile file(ScenarioLoader::resolve(name));
        if (file.open(QIODevice::ReadOnly))
            corpus.add(QStringLiteral("fuzz_scenario_file"), name, file.readAll());
    }
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s corpus-folder\n", argv[0]);
        return 1;
    }
    Logger::initialize(Logger::Error);
    Logger::setConsoleEnabled(false);
    QTemporaryDir scratch;
    Corpus corpus(QString::fromLocal8Bit(argv[1]));
    bool talked = true;
    const QStringList scenarios = ScenarioLoader::builtInNames();
    for (int i = 0; i < scenarios.size(); ++i)
        talked = recordConversation(scenarios.at(i), i, corpus) && talked;
    addWebSeeds(corpus);
    addCacheSeeds(corpus, scratch);
    addScenarioSeeds(corpus);
    return talked && !corpus.failed() ? 0 : 1;
}
