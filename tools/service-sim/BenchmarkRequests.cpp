#include "BenchmarkRequests.h"

#include "logger/Logger.h"
#include "message/Message.h"

#include "DiskPerformance.pb.h"

namespace Velmora::ServiceSim {

using Velmora::Message::Message;

namespace {
// Share of the sequential speed that 4 KiB random access reaches.
constexpr double RandomShareSolidState = 0.11;
constexpr double RandomShareSpinning = 0.006;
} // namespace

BenchmarkRequests::BenchmarkRequests(Machine& machine, const Timings& timings, quint32 seed, QObject* parent)
    : RequestGroup(machine, timings, parent)
    , m_random(seed)
{
}

QList<quint32> BenchmarkRequests::requestTypes() const
{
    return {Message::DiskBenchmarkRequest};
}

void BenchmarkRequests::nominalSpeeds(quint32 driveId, double* read, double* write)
{
    // Spinning disks and odd drives have their speeds in the scenario; the rest are typical.
    const Machine::DriveInfo* drive = m_machine.drive(driveId);
    const QString type = QString::fromStdString(drive->type());
    const DriveExtras& extras = m_machine.driveExtras(driveId);
    if (extras.readBytesPerSecond > 0 && extras.writeBytesPerSecond > 0) {
        *read = extras.readBytesPerSecond;
        *write = extras.writeBytesPerSecond;
    } else if (type.contains(QLatin1String("NVMe"), Qt::CaseInsensitive)) {
        *read = 3450e6;
        *write = 2950e6;
    } else if (type.contains(QLatin1String("USB"), Qt::CaseInsensitive)) {
        *read = 118e6;
        *write = 36e6;
    } else {
        *read = 562e6;
        *write = 521e6;
    }
    // A SATA drive on a slower port is held to that port's speed.
    const double portLimit = drive->satacurrentspeed() == 1 ? 140e6 : drive->satacurrentspeed() == 2 ? 280e6 : 0;
    if (portLimit > 0) {
        *read = qMin(*read, portLimit);
        *write = qMin(*write, portLimit * 0.95);
    }
}

double BenchmarkRequests::jitter(double value)
{
    return value * (0.96 + 0.06 * m_random.generateDouble());
}

bool BenchmarkRequests::handle(quint32, const QByteArray& payload, ClientConnection* client)
{
    Velmora::Message::DiskPerformanceRequest request;
    if (!parse(payload, &request))
        return false;

    Velmora::Message::DiskPerformance answer;
    answer.set_driveid(request.driveid());
    if (!m_machine.drive(request.driveid())) {
        answer.set_code(Velmora::Message::NOT_FOUND);
        client->send(Message::DiskBenchmarkResponse, answer);
        return true;
    }
    if (request.blocksize() == 0 || request.filesize() < request.blocksize()) {
        answer.set_code(Velmora::Message::INVALID_REQUEST);
        client->send(Message::DiskBenchmarkResponse, answer);
        return true;
    }

    double read = 0;
    double write = 0;
    nominalSpeeds(request.driveid(), &read, &write);
    const bool spinning = read < 250e6 && !QString::fromStdString(m_machine.drive(request.driveid())->type())
                                               .contains(QLatin1String("USB"), Qt::CaseInsensitive);
    const double randomShare = spinning ? RandomShareSpinning : RandomShareSolidState;

    answer.set_code(Velmora::Message::SUCCESS);
    answer.set_readspeed(jitter(read));
    answer.set_writespeed(jitter(write));
    answer.set_randomreadspeed(jitter(read * randomShare));
    answer.set_randomwritespeed(jitter(write * randomShare * 1.6));
    Logger::debug(QString(), QStringLiteral("Benchmark round on drive %1: read %2 MB/s, write %3 MB/s")
                                 .arg(request.driveid()).arg(answer.readspeed() / 1e6, 0, 'f', 1)
                                 .arg(answer.writespeed() / 1e6, 0, 'f', 1));
    later(client, m_timings.benchmarkMs, [answer](ClientConnection* target) {
        target->send(Message::DiskBenchmarkResponse, answer);
    });
    return true;
}

bool BenchmarkRequests::fail(quint32, const QByteArray& payload, int code, ClientConnection* client)
{
    Velmora::Message::DiskPerformanceRequest request;
    if (!parse(payload, &request))
        return false;
    Velmora::Message::DiskPerformance answer;
    answer.set_driveid(request.driveid());
    answer.set_code(static_cast<Velmora::Message::Code>(code));
    later(client, m_timings.benchmarkMs, [answer](ClientConnection* target) {
        target->send(Message::DiskBenchmarkResponse, answer);
    });
    return true;
}

} // namespace Velmora::ServiceSim
