#pragma once

#include <QString>

class QFrame;
class QLabel;
class QPushButton;
class QWidget;

namespace Velmora::Gui::PageStyle {

// The look the drive pages share: dark page, lighter panels, white values, muted captions.
QString stylesheet();

// A panel of the page: the background that sets a group of rows apart from the page.
QFrame* panel(const QString& objectName, QWidget* parent);

// A label or a button of a page's form, found by its object name.
QLabel* label(const QString& objectName, const QString& text, QWidget* parent);
QPushButton* button(const QString& objectName, const QString& text, QWidget* parent);

// The one button of a page that does what the page is for, drawn in the gradient while enabled.
void markPrimary(QWidget* button);

} // namespace Velmora::Gui::PageStyle
