#include "gui/pages/PageStyle.h"

#include <QFrame>
#include <QPushButton>
#include <QLabel>
#include <QVariant>

namespace Velmora::Gui::PageStyle {

namespace {

const char* const Stylesheet = R"(
Velmora--Gui--Page { background-color: rgb(0, 10, 50); }
QLabel { color: rgb(255, 255, 255); font: 14px "Inter UI"; }
#titleLabel { font: 22px "Inter UI Black"; }
QFrame[panel="true"] { background-color: rgb(0, 2, 40); border: 1px solid rgb(0, 36, 94); border-radius: 4px; }
QFrame[panel="true"] QLabel { background: transparent; border: none; }
QPushButton {
    color: rgb(255, 255, 255); background-color: rgb(0, 36, 94); border: none;
    padding: 0 24px; min-height: 40px; font: 14px "Inter UI Semi Bold";
}
QPushButton:hover { background-color: rgb(0, 59, 114); }
QPushButton:disabled { color: rgb(140, 150, 195); background-color: rgb(16, 44, 107); }
QPushButton[primary="true"]:enabled {
    background-color: qlineargradient(x1: 0, y1: 0, x2: 1, y2: 0, stop: 0 rgb(0, 225, 255), stop: 1 rgb(160, 3, 218));
}
QPushButton[primary="true"]:enabled:hover {
    background-color: qlineargradient(x1: 0, y1: 0, x2: 1, y2: 0, stop: 0 rgb(0, 190, 230), stop: 1 rgb(130, 3, 190));
}
)";

} // namespace

QString stylesheet()
{
    return QString::fromUtf8(Stylesheet);
}

QFrame* panel(const QString& objectName, QWidget* parent)
{
    auto* frame = new QFrame(parent);
    frame->setObjectName(objectName);
    frame->setProperty("panel", true);
    return frame;
}

QLabel* label(const QString& objectName, const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(objectName);
    return label;
}

QPushButton* button(const QString& objectName, const QString& text, QWidget* parent)
{
    auto* button = new QPushButton(text, parent);
    button->setObjectName(objectName);
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

void markPrimary(QWidget* button)
{
    button->setProperty("primary", true);
}

} // namespace Velmora::Gui::PageStyle
