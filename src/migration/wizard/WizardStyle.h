#pragma once

#include <QString>

class QWidget;

namespace Velmora::Migration::WizardStyle {

// The look of the wizard's pages, on top of the main window's: lists, trees, tabs, spin boxes.
QString stylesheet();

// The button that leads on, drawn in the gradient while it is enabled.
void markPrimary(QWidget* button);

} // namespace Velmora::Migration::WizardStyle
