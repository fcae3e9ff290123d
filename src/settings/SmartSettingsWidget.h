#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QWidget>

class QComboBox;
class QLabel;

namespace Velmora::Settings {

// How often the S.M.A.R.T. values are read. Setting the interval from the store is silent; only
// the user's choice announces `settingsChanged()`.
class SmartSettingsWidget : public QWidget
{
    Q_OBJECT

public:
    // Text shown and interval in milliseconds.
    using Interval = QPair<QString, int>;

    explicit SmartSettingsWidget(QWidget* parent = nullptr);

    void setIntervals(const QList<Interval>& intervals);
    int readInterval() const;
    // Selects `milliseconds`, or the first interval when it is not offered.
    void setReadInterval(int milliseconds);

signals:
    void settingsChanged();

private:
    QLabel* label_tempReadoutInterval = nullptr;
    QComboBox* comboBox_tempReadoutInterval = nullptr;
};

} // namespace Velmora::Settings
