#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

namespace Velmora::ServiceSim {

// Work that the service reports on as it goes: `step(k, n)` runs for k = 1..n, one call every
// interval, then the task deletes itself. Stopping it, or the end of its owner, ends it early.
class SteppedTask : public QObject
{
    Q_OBJECT

public:
    using Step = std::function<void(int step, int steps)>;

    SteppedTask(int steps, int intervalMs, Step step, QObject* parent);

    void start();
    void stop();
    int currentStep() const { return m_step; }
    int steps() const { return m_steps; }

private:
    void advance();

    QTimer m_timer;
    const int m_steps;
    int m_step = 0;
    Step m_work;
};

} // namespace Velmora::ServiceSim
