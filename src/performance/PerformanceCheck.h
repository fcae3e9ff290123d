#pragma once

#include "communication/Handler.h"

#include "DiskPerformance.pb.h"

#include <QDateTime>
#include <QObject>

#include <functional>

class QTimer;

namespace Velmora::System {
class System;
}

namespace Velmora::Performance {

class PerformanceResult;

// The drive speed test. The service measures one round (write, then read, one file of 128 MiB in
// blocks of 4 MiB); this class schedules ten rounds back to back, estimates the time left after
// each, and keeps the best figures in the current drive's PerformanceResult.
class PerformanceCheck : public Velmora::Communication::Handler
{
    Q_OBJECT

public:
    // The page acts on these numbers.
    enum TestStatus { Idle = 0, Running = 1, Finished = 2, Canceled = 3, Failed = 4 };
    Q_ENUM(TestStatus)

    static constexpr int Rounds = 10;
    static constexpr quint64 FileSize = 134217728;  // 128 MiB
    static constexpr quint32 BlockSize = 4194304;   // 4 MiB

    using Clock = std::function<QDateTime()>;

    PerformanceCheck(Velmora::System::System* system, QObject* parent = nullptr);

    void clientConnected() override;
    void handleMessage(Velmora::Message::Message::MessageType type, QByteArray payload) override;

    bool isRunning() const { return m_status == Running; }
    TestStatus status() const { return m_status; }
    // The result of the system's current drive, or null.
    PerformanceResult* currentResult() const;

    // Elapsed and remaining times are read from this clock; the default is the wall clock.
    void setClock(Clock clock);

public slots:
    void startTest();
    void stopTest();

signals:
    void progressChanged(int progress);
    void elapsedTimeChanged(int time);
    void remainingTimeChanged(int time);
    void statusChanged(Velmora::Performance::PerformanceCheck::TestStatus status);
    void resultChanged();

private slots:
    void runSingleFileTest();
    void onCurrentDriveChanged();
    void setStatus(Velmora::Performance::PerformanceCheck::TestStatus status);

private:
    void onRoundFinished(const Velmora::Message::DiskPerformance& response);
    void abandonTest(TestStatus status);
    PerformanceResult* resultFor(int driveId);

    TestStatus m_status = Idle;
    Velmora::System::System* m_system;
    Velmora::Message::DiskPerformance m_response;
    Velmora::Message::DiskPerformanceRequest m_request;
    QDateTime m_startTime;
    QTimer* m_nextRoundTimer;
    int m_round = 0;
    Clock m_clock;
};

} // namespace Velmora::Performance
