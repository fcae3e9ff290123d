#include "SteppedTask.h"

namespace Velmora::ServiceSim {

SteppedTask::SteppedTask(int steps, int intervalMs, Step step, QObject* parent)
    : QObject(parent)
    , m_steps(qMax(1, steps))
    , m_work(std::move(step))
{
    m_timer.setInterval(qMax(0, intervalMs));
    connect(&m_timer, &QTimer::timeout, this, &SteppedTask::advance);
}

void SteppedTask::start()
{
    m_timer.start();
}

void SteppedTask::stop()
{
    m_timer.stop();
    deleteLater();
}

void SteppedTask::advance()
{
    ++m_step;
    if (m_step >= m_steps)
        m_timer.stop();
    m_work(m_step, m_steps);
    if (m_step >= m_steps)
        deleteLater();
}

} // namespace Velmora::ServiceSim
