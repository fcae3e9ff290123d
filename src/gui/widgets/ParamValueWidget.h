#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

class QLabel;

namespace Velmora::Gui {

// A caption and its value side by side, as in "CAPACITY: 465.76 GB".
class ParamValueWidget : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_PROPERTY(QString value READ value WRITE setValue)
    Q_PROPERTY(QColor color READ color WRITE setColor)

public:
    explicit ParamValueWidget(QWidget* parent = nullptr);

    QString name() const;
    void setName(const QString& name);
    QString value() const;
    void setValue(const QString& value);
    // The caption's colour.
    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    // Lines up the values of several rows.
    void setNameWidth(int width);

protected:
    void changeEvent(QEvent* event) override;

private:
    QLabel* m_nameLabel;
    QLabel* m_valueLabel;
    QColor m_color;
};

} // namespace Velmora::Gui
