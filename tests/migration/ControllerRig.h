#pragma once

#include "PlanBuilder.h"
#include "migration/Migration.h"
#include "migration/MigrationController.h"
#include "system/System.h"
#include "system/SystemManager.h"

#include "FileTypeStructure.pb.h"
#include "Migration.pb.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QStringList>

#include <functional>

// A machine, its system manager and a migration controller, with a journal of every frame the two
// handlers send and of what the model announces. The test plays the service: it answers the
// requests it finds in the journal by calling handleMessage, as the dispatcher would.
class ControllerRig
{
public:
    using Type = Velmora::Message::Message::MessageType;
    using Frame = QPair<int, QByteArray>;

    ControllerRig()
        : manager(&system)
        , controller(&manager, &system)
    {
        using Handler = Velmora::Communication::Handler;
        const auto withPayload = [this](Type type, QByteArray payload) { frames.append({int(type), payload}); };
        const auto bare = [this](Type type) { frames.append({int(type), QByteArray()}); };
        QObject::connect(&controller, qOverload<Type, QByteArray>(&Handler::sendMessage), withPayload);
        QObject::connect(&controller, qOverload<Type>(&Handler::sendMessage), bare);
        QObject::connect(&manager, qOverload<Type>(&Handler::sendMessage), [this](Type type) {
            if (type == Velmora::Message::Message::SystemInfoRequest)
                ++systemReads;
        });

        model = controller.migration();
        QObject::connect(model, &Velmora::Migration::Migration::migrationFailed, [this](const QString& text) {
            failures.append(text);
            stepsAtFailure.append(model->migrationStep());
        });
        QObject::connect(model, &Velmora::Migration::Migration::migrationFinished, [this] { ++finished; });
        QObject::connect(model, &Velmora::Migration::Migration::migrationStepChanged,
            [this] { steps.append(model->migrationStep()); });
    }

    // The example source disk as drive 1 and an empty drive of the maker as drive 2, chosen.
    void choose(PlanBuilder::Drive* source = nullptr, qint64 capacity = PlanBuilder::ExampleCapacity)
    {
        if (!source)
            source = PlanBuilder::exampleSource();
        system.addDrive(source);
        system.addDrive(PlanBuilder::drive(2, capacity, true, nullptr, QStringLiteral("BRANTEL N1")));
        model->setSourceDriveId(source->id());
        model->setDestDriveId(2);
        frames.clear();
    }

    PlanBuilder::MigrationDestDrive* plan() const { return model->destinationDrive(); }

    template <typename T>
    static QByteArray bytes(const T& message)
    {
        return QByteArray::fromStdString(message.SerializeAsString());
    }

    template <typename T>
    T sent(int index) const
    {
        T message;
        const QByteArray& payload = frames.at(index).second;
        message.ParseFromArray(payload.constData(), payload.size());
        return message;
    }

    QList<int> types() const
    {
        QList<int> result;
        for (const Frame& frame : frames)
            result.append(frame.first);
        return result;
    }

    void deliver(Type type, const QByteArray& payload) { controller.handleMessage(type, payload); }

    // The answers a willing service gives. Each returns the answer to the last frame sent.
    void answerClean(int code = 0)
    {
        Velmora::Message::CleanDisk answer;
        answer.set_code(static_cast<Velmora::Message::Code>(code));
        deliver(Velmora::Message::Message::CleanDisk, bytes(answer));
    }
    void answerCreate(int code = 0)
    {
        auto request = sent<Velmora::Message::PartitionCreate>(frames.size() - 1);
        request.set_code(static_cast<Velmora::Message::Code>(code));
        request.set_newpartitionid(request.partition().id() + 100);
        deliver(Velmora::Message::Message::PartitionCreate, bytes(request));
    }
    void answerFormat(int code = 0)
    {
        auto request = sent<Velmora::Message::PartitionFormat>(frames.size() - 1);
        request.set_code(static_cast<Velmora::Message::Code>(code));
        deliver(Velmora::Message::Message::PartitionFormat, bytes(request));
    }
    void answerCopy(int code, qint64 copied, const QStringList& faultedFiles = {})
    {
        Velmora::Message::FileCopyReport answer;
        answer.set_code(static_cast<Velmora::Message::Code>(code));
        answer.set_copiedsize(static_cast<quint64>(copied));
        for (const QString& file : faultedFiles)
            answer.add_faultedfiles(file.toStdString());
        deliver(Velmora::Message::Message::FileCopyResponse, bytes(answer));
    }
    void answerBoot(int code = 0)
    {
        Velmora::Message::MigrationBootability answer;
        answer.set_code(static_cast<Velmora::Message::Code>(code));
        deliver(Velmora::Message::Message::MigrationBootability, bytes(answer));
    }

    // Answers every request of the run with success until it ends or `stop` says so; a copy
    // reports the partition's used size as copied.
    void serve(const std::function<bool(int type)>& stop = {})
    {
        int handled = 0;
        while (frames.size() > handled) {
            const int index = frames.size() - 1;
            const int type = frames.at(index).first;
            handled = frames.size();
            if (stop && stop(type))
                return;
            switch (type) {
            case Velmora::Message::Message::CleanDisk: answerClean(); break;
            case Velmora::Message::Message::PartitionCreate: answerCreate(); break;
            case Velmora::Message::Message::PartitionFormat: answerFormat(); break;
            case Velmora::Message::Message::FileCopyRequest: {
                const auto request = sent<Velmora::Message::FileCopyRequest>(index);
                answerCopy(0, plan()->migrationPartition(int(request.sourcepartitionid()))->used().value());
                break;
            }
            case Velmora::Message::Message::MigrationBootability: answerBoot(); break;
            default: return;
            }
        }
    }

    Velmora::System::System system;
    Velmora::System::SystemManager manager;
    Velmora::Migration::MigrationController controller;
    Velmora::Migration::Migration* model = nullptr;
    QList<Frame> frames;
    QStringList failures;
    QList<int> stepsAtFailure;
    QList<int> steps;
    int finished = 0;
    int systemReads = 0;
};
