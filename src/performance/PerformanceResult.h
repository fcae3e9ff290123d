#pragma once

#include <QObject>

namespace Velmora::Performance {

// The best figures of the last speed test of one drive, in decimal megabytes per second. The drive
// owns it; it is made the first time a test reports for that drive.
class PerformanceResult : public QObject
{
    Q_OBJECT

public:
    explicit PerformanceResult(QObject* parent = nullptr);

    double readSpeed() const { return m_readSpeed; }
    double writeSpeed() const { return m_writeSpeed; }
    // True until the first figure arrives after construction or reset().
    bool isEmpty() const { return m_empty; }

    // A test reports once per round; a figure only ever replaces a smaller one, so the result is
    // the best round and not the mean of them.
    void setReadSpeed(double speed);
    void setWriteSpeed(double speed);
    void reset();

private:
    double m_readSpeed = 0.0;
    double m_writeSpeed = 0.0;
    bool m_empty = true;
};

} // namespace Velmora::Performance
