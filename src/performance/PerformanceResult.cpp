#include "performance/PerformanceResult.h"

namespace Velmora::Performance {

PerformanceResult::PerformanceResult(QObject* parent)
    : QObject(parent)
{
}

// Written as "greater than" so that a NaN from a confused service never replaces a figure.
void PerformanceResult::setReadSpeed(double speed)
{
    m_empty = false;
    if (speed > m_readSpeed)
        m_readSpeed = speed;
}

void PerformanceResult::setWriteSpeed(double speed)
{
    m_empty = false;
    if (speed > m_writeSpeed)
        m_writeSpeed = speed;
}

void PerformanceResult::reset()
{
    m_readSpeed = 0.0;
    m_writeSpeed = 0.0;
    m_empty = true;
}

} // namespace Velmora::Performance
