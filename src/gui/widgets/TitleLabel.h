#pragma once

#include <QLabel>

namespace Velmora::Gui {

// The heading of a page.
class TitleLabel : public QLabel
{
    Q_OBJECT

public:
    explicit TitleLabel(QWidget* parent = nullptr);
    explicit TitleLabel(const QString& text, QWidget* parent = nullptr);
};

} // namespace Velmora::Gui
