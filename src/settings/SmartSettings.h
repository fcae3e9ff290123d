#pragma once

#include "settings/SettingsCategory.h"
#include "settings/SmartSettingsWidget.h"

#include <QPointer>

namespace Velmora::Settings {

// "S.M.A.R.T.": the read-out interval, group "SMART", key "ReadInterval".
class SmartSettings : public SettingsCategory
{
    Q_OBJECT

public:
    explicit SmartSettings(QObject* parent = nullptr);

    // The intervals offered, in this order; the texts translated.
    QList<SmartSettingsWidget::Interval> intervals() const { return m_intervals; }

public slots:
    void onApplyUserChanges() override;

protected:
    QWidget* createWidget() override;

private:
    QList<SmartSettingsWidget::Interval> m_intervals;
    QPointer<SmartSettingsWidget> m_widget;
};

} // namespace Velmora::Settings
