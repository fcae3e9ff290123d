#include "settings/SmartSettingsWidget.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

namespace Velmora::Settings {

SmartSettingsWidget::SmartSettingsWidget(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("SmartSettingsWidget"));
    label_tempReadoutInterval = new QLabel(tr("REFRESH S.M.A.R.T. AUTOMATICALLY"), this);
    label_tempReadoutInterval->setObjectName(QStringLiteral("label_tempReadoutInterval"));
    comboBox_tempReadoutInterval = new QComboBox(this);
    comboBox_tempReadoutInterval->setObjectName(QStringLiteral("comboBox_tempReadoutInterval"));
    comboBox_tempReadoutInterval->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    // Lets the page's stylesheet give the items of the open list their room.
    comboBox_tempReadoutInterval->setItemDelegate(new QStyledItemDelegate(comboBox_tempReadoutInterval));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(16);
    layout->addWidget(label_tempReadoutInterval);
    layout->addWidget(comboBox_tempReadoutInterval);
    layout->addStretch(1);

    connect(comboBox_tempReadoutInterval, qOverload<int>(&QComboBox::currentIndexChanged), this,
        &SmartSettingsWidget::settingsChanged);
}

void SmartSettingsWidget::setIntervals(const QList<Interval>& intervals)
{
    const QSignalBlocker blocker(comboBox_tempReadoutInterval);
    comboBox_tempReadoutInterval->clear();
    for (const Interval& interval : intervals)
        comboBox_tempReadoutInterval->addItem(interval.first, interval.second);
}

int SmartSettingsWidget::readInterval() const
{
    return comboBox_tempReadoutInterval->currentData().toInt();
}

void SmartSettingsWidget::setReadInterval(int milliseconds)
{
    const QSignalBlocker blocker(comboBox_tempReadoutInterval);
    comboBox_tempReadoutInterval->setCurrentIndex(qMax(0, comboBox_tempReadoutInterval->findData(milliseconds)));
}

} // namespace Velmora::Settings
