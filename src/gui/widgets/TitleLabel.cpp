#include "gui/widgets/TitleLabel.h"

#include <QColor>

namespace Velmora::Gui {

TitleLabel::TitleLabel(QWidget* parent)
    : TitleLabel(QString(), parent)
{
}

TitleLabel::TitleLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent)
{
    setStyleSheet(QStringLiteral("color: %1;").arg(QColor(140, 150, 195).name()));
}

} // namespace Velmora::Gui
