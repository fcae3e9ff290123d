#pragma once

#include <QLabel>

// A label that reports a press of the mouse, for texts that act as links.
class ClickableLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent* event) override;
};
