#include "BuiltInHandlers.h"

#include "EngineHandler.h"
#include "FixedCall.h"
#include "Log.h"
#include "Refusals.h"

#include "message/Message.h"

#include "Migration.pb.h"
#include "Version.pb.h"

namespace Velmora::Daemon {

using Velmora::Message::Message;
namespace Wire = Velmora::Message;

namespace {

template<typename M>
bool parses(const QByteArray& payload)
{
    M message;
    return message.ParseFromArray(payload.constData(), payload.size());
}

class MigrationRefusals : public RequestHandler
{
public:
    QList<quint32> requestTypes() const override { return {Message::PartitionRemove}; }

    std::unique_ptr<Call> decode(quint32 type, const QByteArray& payload) const override
    {
        if (!parses<Wire::PartitionRemove>(payload))
            return nullptr;
        const QString name = Message::typeName(type);
        qCWarning(serverLog, "Refused %s: not done by this service", qPrintable(name));
        return std::make_unique<FixedCall>(refusalFor(type, payload, Wire::FAILED,
            QStringLiteral("%1 is not done by this service").arg(name)));
    }
};

class UnwiredRequests : public RequestHandler
{
public:
    explicit UnwiredRequests(QList<quint32> types)
        : m_types(std::move(types))
    {
    }
    QList<quint32> requestTypes() const override { return m_types; }
    std::unique_ptr<Call> decode(quint32 type, const QByteArray&) const override
    {
        const QString name = Message::typeName(type);
        qCWarning(serverLog, "%s is not answered: this build of the service has no engine for it", qPrintable(name));
        return std::make_unique<FixedCall>(
            errorAnswer(Wire::FAILED, QStringLiteral("This build of the service does not answer %1").arg(name)));
    }

private:
    const QList<quint32> m_types;
};

} // namespace

std::unique_ptr<RequestHandler> versionHandler(const ServiceVersion& version)
{
    return std::make_unique<EngineHandler<Wire::Version, Wire::Version>>(Message::Version, Message::Version,
        [version](const Wire::Version&, const PeerCredentials&, const std::atomic_bool&, const auto&) {
            Wire::Version answer;
            answer.set_major(version.major);
            answer.set_minor(version.minor);
            answer.set_patch(version.patch);
            return answer;
        });
}

std::unique_ptr<RequestHandler> migrationRefusals()
{
    return std::make_unique<MigrationRefusals>();
}

std::unique_ptr<RequestHandler> unwiredRequests(const QList<quint32>& types)
{
    return std::make_unique<UnwiredRequests>(types);
}

QList<quint32> engineRequestTypes()
{
    return {Message::SystemInfoRequest, Message::SystemReport, Message::SystemTrimCommand, Message::SmartRequest,
        Message::FileTypeStructureReq, Message::DiskBenchmarkRequest, Message::FileListRequest,
        Message::MigrationFilterTypeRequest, Message::MigrationFilterSystemPaths, Message::CopyLogFilesRequest};
}

} // namespace Velmora::Daemon
