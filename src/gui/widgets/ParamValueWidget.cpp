#include "gui/widgets/ParamValueWidget.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

namespace Velmora::Gui {

ParamValueWidget::ParamValueWidget(QWidget* parent)
    : QWidget(parent)
    , m_nameLabel(new QLabel(this))
    , m_valueLabel(new QLabel(this))
{
    m_nameLabel->setObjectName(QStringLiteral("nameLabel"));
    m_valueLabel->setObjectName(QStringLiteral("valueLabel"));
    m_nameLabel->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_nameLabel);
    layout->addWidget(m_valueLabel);

    setColor(QColor(140, 150, 195));
}

QString ParamValueWidget::name() const
{
    return m_nameLabel->text();
}

void ParamValueWidget::setName(const QString& name)
{
    m_nameLabel->setText(name);
}

QString ParamValueWidget::value() const
{
    return m_valueLabel->text();
}

void ParamValueWidget::setValue(const QString& value)
{
    m_valueLabel->setText(value);
}

void ParamValueWidget::setColor(const QColor& color)
{
    m_color = color;
    m_nameLabel->setStyleSheet(QStringLiteral("color: %1;").arg(color.name()));
}

void ParamValueWidget::setNameWidth(int width)
{
    m_nameLabel->setMinimumWidth(width);
}

void ParamValueWidget::changeEvent(QEvent* event)
{
    // A label with a style sheet of its own no longer inherits the font of its parent; the
    // caption is to look like the value beside it.
    if (event->type() == QEvent::FontChange)
        m_nameLabel->setFont(font());
    QWidget::changeEvent(event);
}

} // namespace Velmora::Gui
