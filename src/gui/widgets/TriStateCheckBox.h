#pragma once

#include <QCheckBox>

// A check box that can show a partial state (some of what it stands for is chosen) but that a
// click never puts into it: unchecked goes to checked.
class TriStateCheckBox : public QCheckBox
{
    Q_OBJECT

public:
    explicit TriStateCheckBox(QWidget* parent = nullptr);
    explicit TriStateCheckBox(const QString& text, QWidget* parent = nullptr);

    using QCheckBox::setChecked;

public slots:
    // A Qt::CheckState value; once the box is no longer tristate, 2 is checked and all else not.
    void setChecked(int state);

protected:
    void nextCheckState() override;
};
