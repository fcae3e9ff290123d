#include "performance/PerformanceCheck.h"

#include "logger/Logger.h"
#include "message/Payload.h"
#include "performance/PerformanceResult.h"
#include "system/Drive.h"
#include "system/System.h"

#include <QTimer>

#include <cmath>

namespace Velmora::Performance {

using Velmora::Message::Message;

namespace {
// The service reports bytes per second; the page shows decimal megabytes.
constexpr double BytesPerMegabyte = 1000000.0;
} // namespace

PerformanceCheck::PerformanceCheck(Velmora::System::System* system, QObject* parent)
    : Handler(parent)
    , m_system(system)
    , m_nextRoundTimer(new QTimer(this))
    , m_clock(&QDateTime::currentDateTime)
{
    setName(QString::fromLatin1(metaObject()->className()));
    setMessageTypes({Message::DiskBenchmarkResponse});
    qRegisterMetaType<TestStatus>();

    m_request.set_filesize(FileSize);
    m_request.set_blocksize(BlockSize);

    // Interval 0: the next round goes out at the next turn of the event loop, not from inside the
    // delivery of the previous answer.
    m_nextRoundTimer->setSingleShot(true);
    m_nextRoundTimer->setInterval(0);
    connect(m_nextRoundTimer, &QTimer::timeout, this, &PerformanceCheck::runSingleFileTest);
    connect(m_system, &Velmora::System::System::currentDriveChanged, this, &PerformanceCheck::onCurrentDriveChanged);
}

void PerformanceCheck::clientConnected()
{
    // A reconnection doesn't restart a test: a round that is never answered waits for the user.
}

PerformanceResult* PerformanceCheck::currentResult() const
{
    Velmora::System::Drive* drive = m_system->currentDrive();
    return drive ? drive->performanceResult() : nullptr;
}

void PerformanceCheck::setClock(Clock clock)
{
    m_clock = std::move(clock);
}

void PerformanceCheck::startTest()
{
    if (m_status == Running) {
        Logger::warning(QString(), QStringLiteral("Test is already running. Restarting."));
        stopTest();
    }

    Velmora::System::Drive* drive = m_system->currentDrive();
    if (!drive) {
        Logger::error(QString(), QStringLiteral("Tried to run performance test without drive selected."));
        return;
    }

    m_request.set_driveid(static_cast<quint32>(drive->id()));
    if (PerformanceResult* result = drive->performanceResult())
        result->reset();

    m_round = 0;
    runSingleFileTest();
    m_startTime = m_clock();

    setStatus(Running);
    emit resultChanged();
    emit remainingTimeChanged(0);
    emit elapsedTimeChanged(0);
    emit progressChanged(0);
}

void PerformanceCheck::stopTest()
{
    abandonTest(Canceled);
}

void PerformanceCheck::onCurrentDriveChanged()
{
    // Runs after the change: it is the newly selected drive whose figures are cleared.
    abandonTest(Idle);
}

void PerformanceCheck::abandonTest(TestStatus status)
{
    // The round in flight runs to its end in the service and its answer is dropped; a round that
    // is only scheduled must not go out at all.
    m_nextRoundTimer->stop();
    setStatus(status);
    if (PerformanceResult* result = currentResult())
        result->reset();
    emit resultChanged();
    emit remainingTimeChanged(0);
    emit elapsedTimeChanged(0);
    emit progressChanged(0);
}

void PerformanceCheck::runSingleFileTest()
{
    emit sendMessage(Message::DiskBenchmarkRequest, Velmora::Message::toPayload(m_request));
    ++m_round;
}

void PerformanceCheck::setStatus(TestStatus status)
{
    if (status == m_status)
        return;
    m_status = status;
    emit statusChanged(status);
}

void PerformanceCheck::handleMessage(Message::MessageType type, QByteArray payload)
{
    if (type != Message::DiskBenchmarkResponse)
        return;

    if (!m_response.ParseFromArray(payload.constData(), payload.size())) {
        Logger::error(QString(), QStringLiteral("Could not parse message."));
        return;
    }

    switch (m_response.code()) {
    case Velmora::Message::CANCELED:
    case Velmora::Message::IN_PROGRESS:
        // Interim reports of the service; the round's real answer is still to come.
        return;
    case Velmora::Message::SUCCESS:
        onRoundFinished(m_response);
        return;
    default:
        Logger::error(QString(), QStringLiteral("Error while running performance test: %1.").arg(static_cast<int>(m_response.code())));
        setStatus(Failed);
        return;
    }
}

void PerformanceCheck::onRoundFinished(const Velmora::Message::DiskPerformance& response)
{
    if (m_status != Running)
        return;

    const qint64 elapsed = m_startTime.secsTo(m_clock());
    emit elapsedTimeChanged(static_cast<int>(elapsed));

    // The rounds take about equally long, so the total is extrapolated from the mean so far.
    const double estimate = static_cast<double>(elapsed) / m_round * Rounds;
    const qint64 total = static_cast<qint64>(std::floor(estimate + 0.5));
    emit remainingTimeChanged(static_cast<int>(total - elapsed));
    emit progressChanged(m_round * 100 / Rounds);

    if (PerformanceResult* result = resultFor(static_cast<int>(response.driveid()))) {
        result->setWriteSpeed(response.writespeed() / BytesPerMegabyte);
        result->setReadSpeed(response.readspeed() / BytesPerMegabyte);
    }

    if (m_round < Rounds) {
        m_nextRoundTimer->start();
        return;
    }
    setStatus(Finished);
    emit remainingTimeChanged(0);
    emit resultChanged();
}

PerformanceResult* PerformanceCheck::resultFor(int driveId)
{
    Velmora::System::Drive* drive = m_system->drive(driveId);
    if (!drive) {
        // The drive went away while its round ran; the round still counts towards the schedule.
        Logger::warning(QString(), QStringLiteral("Performance result for unknown drive %1 dropped.").arg(driveId));
        return nullptr;
    }
    if (!drive->performanceResult())
        drive->setPerformanceResult(new PerformanceResult(drive));
    return drive->performanceResult();
}

} // namespace Velmora::Performance
