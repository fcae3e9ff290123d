#pragma once

#include <QList>
#include <QString>
#include <QVector>
#include <QWidget>

namespace Velmora::Smart {
struct SmartHistoryPoint;
}

namespace Velmora::Gui {

// A dot-matrix graph of a value over time: 30 rows on an 8-pixel grid, newest at the right, with
// the highest and lowest value shown on the right and clock times underneath.
class TimeGraph : public QWidget
{
    Q_OBJECT

public:
    static constexpr int Grid = 8;
    static constexpr int Rows = 30;

    explicit TimeGraph(QWidget* parent = nullptr);

    int interval() const { return m_interval; }
    // In seconds; 0 is taken as 1.
    void setInterval(int seconds);
    QString unit() const { return m_unit; }
    void setUnit(const QString& unit);
    // The history, newest first. The points stay the caller's.
    void setData(const QList<Velmora::Smart::SmartHistoryPoint*>& data);
    void clear();

    // One sample per column, newest first: the history laid on a grid of `interval` seconds,
    // each gap repeating the older point's value. Only the time of day of each point counts.
    static QVector<double> resample(const QList<Velmora::Smart::SmartHistoryPoint*>& data,
                                    int interval, int columns);
    // Width of the value labels at the right, for a given largest value.
    int labelColumnWidth(double maximum) const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<Velmora::Smart::SmartHistoryPoint*> m_data;
    int m_interval = 1;
    QString m_unit;
};

} // namespace Velmora::Gui
