#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace Velmora::Gui {

// The little lamps of the status pages. A lamp is a label that shows one of four pictures; the
// pages only decide which.
namespace StatusLed {

inline const QString Inactive = QStringLiteral(":/icons/LED_inactive");
inline const QString Good = QStringLiteral(":/icons/LED_good");
inline const QString Ok = QStringLiteral(":/icons/LED_OK");
inline const QString Bad = QStringLiteral(":/icons/LED_bad");

QLabel* create(const QString& objectName, QWidget* parent);
void show(QLabel* led, const QString& image);

} // namespace StatusLed

} // namespace Velmora::Gui
