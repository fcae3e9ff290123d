#include "gui/widgets/TriStateCheckBox.h"

TriStateCheckBox::TriStateCheckBox(QWidget* parent)
    : TriStateCheckBox(QString(), parent)
{
}

TriStateCheckBox::TriStateCheckBox(const QString& text, QWidget* parent)
    : QCheckBox(text, parent)
{
    setTristate(true);
}

void TriStateCheckBox::setChecked(int state)
{
    if (isTristate())
        setCheckState(static_cast<Qt::CheckState>(state));
    else
        setCheckState(state == Qt::Checked ? Qt::Checked : Qt::Unchecked);
}

void TriStateCheckBox::nextCheckState()
{
    if (checkState() == Qt::Unchecked)
        setCheckState(Qt::Checked);
    else
        QCheckBox::nextCheckState();
}
