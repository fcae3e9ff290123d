#include "support/TestEnvironment.h"
#include "WidgetShots.h"

#include "gui/ApplicationFonts.h"
#include "gui/widgets/ClickableLabel.h"
#include "gui/widgets/MenuBarButton.h"
#include "gui/widgets/MenuButton.h"
#include "gui/widgets/ParamValueWidget.h"
#include "gui/widgets/TitleLabel.h"
#include "gui/widgets/TriStateCheckBox.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
#include <QSpinBox>
#include <QWidgetAction>

using namespace Velmora::Gui;

namespace {

const QColor Caption(140, 150, 195);

// The leftmost column that holds a pixel of this exact colour, or -1.
int leftmostColumnOf(const QImage& image, const QColor& color)
{
    for (int x = 0; x < image.width(); ++x) {
        if (containsColor(image, color, QRect(x, 0, 1, image.height())))
            return x;
    }
    return -1;
}

QFont largeBold()
{
    QFont font(QStringLiteral("Inter UI"));
    font.setPixelSize(24);
    font.setWeight(QFont::Black);
    return font;
}

} // namespace

class TestGuiControls : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void interFacesResolve_data();
    void interFacesResolve();

    void paramValueWidgetProperties();
    void paramValueWidgetCaptionColour();
    void titleLabelColour();

    void clickableLabelEmitsOnPress_data();
    void clickableLabelEmitsOnPress();

    void triStateCheckBoxClicks_data();
    void triStateCheckBoxClicks();
    void triStateCheckBoxSetChecked_data();
    void triStateCheckBoxSetChecked();

    void menuBarButtonSizeHint_data();
    void menuBarButtonSizeHint();
    void menuBarButtonColours_data();
    void menuBarButtonColours();
    void menuBarButtonKeepsItsWidth();
    void menuBarButtonAddsMenuItems();

    void menuButtonFollowsTheDropDown_data();
    void menuButtonFollowsTheDropDown();
};

void TestGuiControls::initTestCase()
{
    QVERIFY(registerApplicationFonts().contains(QStringLiteral("Inter")));
}

void TestGuiControls::interFacesResolve_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("style");
    QTest::addColumn<int>("weight");
    QTest::newRow("Inter UI") << QStringLiteral("Inter UI") << QStringLiteral("Regular") << int(QFont::Normal);
    QTest::newRow("Inter UI Semi Bold") << QStringLiteral("Inter UI Semi Bold") << QStringLiteral("Semi Bold")
                                        << int(QFont::DemiBold);
    QTest::newRow("Inter UI Black") << QStringLiteral("Inter UI Black") << QStringLiteral("Black")
                                    << int(QFont::Black);
}

void TestGuiControls::interFacesResolve()
{
    QFETCH(QString, family);
    QFETCH(QString, style);
    QFETCH(int, weight);

    const QFont requested(family, 12);
    const QFontInfo info(requested);
    QVERIFY2(info.family().startsWith(QStringLiteral("Inter")), qPrintable(info.family()));
    QCOMPARE(info.styleName(), style);

    // The old name draws exactly as the family at that weight, and heavier faces run wider.
    QFont reference(QStringLiteral("Inter"), 12);
    reference.setWeight(weight);
    const QString sample = QStringLiteral("SSD MANAGEMENT 0123456789");
    QCOMPARE(QFontMetrics(requested).horizontalAdvance(sample), QFontMetrics(reference).horizontalAdvance(sample));
    if (weight != QFont::Normal) {
        QVERIFY(QFontMetrics(requested).horizontalAdvance(sample)
                > QFontMetrics(QFont(QStringLiteral("Inter"), 12)).horizontalAdvance(sample));
    }
}

void TestGuiControls::paramValueWidgetProperties()
{
    ParamValueWidget widget;
    // Forms set these through the property system.
    QVERIFY(widget.setProperty("name", QStringLiteral("CAPACITY:")));
    QVERIFY(widget.setProperty("value", QStringLiteral("465.76 GB")));
    QVERIFY(widget.setProperty("color", QColor(255, 0, 0)));

    auto* name = widget.findChild<QLabel*>(QStringLiteral("nameLabel"));
    auto* value = widget.findChild<QLabel*>(QStringLiteral("valueLabel"));
    QVERIFY(name && value);
    QCOMPARE(name->text(), QStringLiteral("CAPACITY:"));
    QCOMPARE(value->text(), QStringLiteral("465.76 GB"));
    QCOMPARE(widget.property("name").toString(), QStringLiteral("CAPACITY:"));
    QCOMPARE(widget.property("value").toString(), QStringLiteral("465.76 GB"));
    QCOMPARE(widget.property("color").value<QColor>(), QColor(255, 0, 0));
    QCOMPARE(name->styleSheet(), QStringLiteral("color: #ff0000;"));

    QCOMPARE(name->sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(widget.layout()->contentsMargins(), QMargins(0, 0, 0, 0));
    widget.setNameWidth(180);
    QCOMPARE(name->minimumWidth(), 180);

    // Caption first, value after it.
    widget.resize(400, 30);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    QCOMPARE(name->x(), 0);
    QVERIFY(value->x() >= 180);
}

void TestGuiControls::paramValueWidgetCaptionColour()
{
    ParamValueWidget widget;
    widget.setFont(largeBold());
    widget.setName(QStringLiteral("SSD MODEL:"));
    widget.setValue(QStringLiteral("VX 500"));
    widget.setNameWidth(200);
    widget.resize(400, 40);
    QCOMPARE(widget.color(), Caption);
    QCOMPARE(widget.findChild<QLabel*>(QStringLiteral("nameLabel"))->styleSheet(),
             QStringLiteral("color: #8c96c3;"));

    const QImage image = grabWidget(widget, QStringLiteral("paramvaluewidget"));
    // The caption takes the widget's font like the value does.
    auto* name = widget.findChild<QLabel*>(QStringLiteral("nameLabel"));
    auto* value = widget.findChild<QLabel*>(QStringLiteral("valueLabel"));
    QCOMPARE(QFontInfo(name->font()).pixelSize(), 24);
    QCOMPARE(QFontInfo(name->font()).styleName(), QFontInfo(value->font()).styleName());
    QVERIFY(containsColor(image, Caption, QRect(0, 0, 200, 40)));
    QVERIFY(!containsColor(image, Caption, QRect(200, 0, 200, 40)));

    widget.setColor(QColor(255, 128, 0));
    const QImage recoloured = grabWidget(widget, QStringLiteral("paramvaluewidget-recoloured"));
    QVERIFY(containsColor(recoloured, QColor(255, 128, 0), QRect(0, 0, 200, 40)));
    QVERIFY(!containsColor(recoloured, Caption));
}

void TestGuiControls::titleLabelColour()
{
    TitleLabel label(QStringLiteral("PERFORMANCE CHECK"));
    QCOMPARE(label.styleSheet(), QStringLiteral("color: #8c96c3;"));
    label.setFont(largeBold());
    label.adjustSize();
    const QImage image = grabWidget(label, QStringLiteral("titlelabel"));
    QVERIFY(containsColor(image, Caption));
}

void TestGuiControls::clickableLabelEmitsOnPress_data()
{
    QTest::addColumn<int>("action");
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("clicks");
    enum { Click, Press, Release };
    QTest::newRow("left click") << int(Click) << int(Qt::LeftButton) << 1;
    QTest::newRow("right click") << int(Click) << int(Qt::RightButton) << 1;
    QTest::newRow("press alone") << int(Press) << int(Qt::LeftButton) << 1;
    QTest::newRow("release alone") << int(Release) << int(Qt::LeftButton) << 0;
}

void TestGuiControls::clickableLabelEmitsOnPress()
{
    QFETCH(int, action);
    QFETCH(int, button);
    QFETCH(int, clicks);

    ClickableLabel label(QStringLiteral("SHOW DETAILS"));
    label.resize(150, 30);
    QSignalSpy clicked(&label, &ClickableLabel::clicked);
    // Pages connect to it by its signature as well.
    QVERIFY(QObject::connect(&label, SIGNAL(clicked()), &label, SLOT(update())));

    const auto b = Qt::MouseButton(button);
    if (action == 0)
        QTest::mouseClick(&label, b);
    else if (action == 1)
        QTest::mousePress(&label, b);
    else
        QTest::mouseRelease(&label, b);
    QCOMPARE(clicked.count(), clicks);
}

void TestGuiControls::triStateCheckBoxClicks_data()
{
    QTest::addColumn<int>("initial");
    QTest::addColumn<QList<int>>("afterEachClick");
    QTest::newRow("unchecked never lands on partial")
        << int(Qt::Unchecked) << QList<int>{Qt::Checked, Qt::Unchecked, Qt::Checked, Qt::Unchecked};
    QTest::newRow("partial goes to checked")
        << int(Qt::PartiallyChecked) << QList<int>{Qt::Checked, Qt::Unchecked, Qt::Checked};
    QTest::newRow("checked goes to unchecked") << int(Qt::Checked) << QList<int>{Qt::Unchecked, Qt::Checked};
}

void TestGuiControls::triStateCheckBoxClicks()
{
    QFETCH(int, initial);
    QFETCH(QList<int>, afterEachClick);

    TriStateCheckBox box(QStringLiteral("VIDEO"));
    QVERIFY(box.isTristate());
    box.setCheckState(Qt::CheckState(initial));
    box.resize(box.sizeHint());
    QSignalSpy changed(&box, &QCheckBox::stateChanged);
    for (int expected : afterEachClick) {
        QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(5, box.height() / 2));
        QCOMPARE(int(box.checkState()), expected);
    }
    QCOMPARE(changed.count(), afterEachClick.size());
    grabWidget(box, QStringLiteral("tristatecheckbox-%1").arg(initial));
}

void TestGuiControls::triStateCheckBoxSetChecked_data()
{
    QTest::addColumn<bool>("tristate");
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("expected");
    QTest::newRow("tristate 0") << true << 0 << int(Qt::Unchecked);
    QTest::newRow("tristate 1") << true << 1 << int(Qt::PartiallyChecked);
    QTest::newRow("tristate 2") << true << 2 << int(Qt::Checked);
    QTest::newRow("two-state 0") << false << 0 << int(Qt::Unchecked);
    QTest::newRow("two-state 1 is not checked") << false << 1 << int(Qt::Unchecked);
    QTest::newRow("two-state 2") << false << 2 << int(Qt::Checked);
}

void TestGuiControls::triStateCheckBoxSetChecked()
{
    QFETCH(bool, tristate);
    QFETCH(int, state);
    QFETCH(int, expected);

    TriStateCheckBox box;
    box.setTristate(tristate);
    box.setCheckState(expected == Qt::Checked ? Qt::Unchecked : Qt::Checked);

    // Through a connection by signature, as the filter pages feed their boxes.
    QSpinBox source;
    source.setRange(-1, 5);
    source.setValue(-1);
    QVERIFY(QObject::connect(&source, SIGNAL(valueChanged(int)), &box, SLOT(setChecked(int))));
    source.setValue(state);
    QCOMPARE(int(box.checkState()), expected);

    // The boolean form still means checked or not.
    box.setChecked(true);
    QCOMPARE(box.checkState(), Qt::Checked);
    box.setChecked(false);
    QCOMPARE(box.checkState(), Qt::Unchecked);
}

void TestGuiControls::menuBarButtonSizeHint_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("widestLine");
    QTest::newRow("one line") << QStringLiteral("SETTINGS") << QStringLiteral("SETTINGS");
    QTest::newRow("second line wider") << QStringLiteral("SSD\nMANAGEMENT") << QStringLiteral("MANAGEMENT");
    QTest::newRow("first line wider") << QStringLiteral("ADDITIONAL\nFEATURES") << QStringLiteral("ADDITIONAL");
}

void TestGuiControls::menuBarButtonSizeHint()
{
    QFETCH(QString, text);
    QFETCH(QString, widestLine);

    MenuBarButton button;
    button.setText(text);
    const QFontMetrics metrics(button.font());
    QCOMPARE(button.sizeHint(), QSize(metrics.horizontalAdvance(widestLine), 47));
    if (text.contains(QLatin1Char('\n')))
        QVERIFY(button.sizeHint().width() < metrics.horizontalAdvance(text.simplified()));

    // A larger font widens it.
    QFont font = button.font();
    font.setPixelSize(30);
    button.setFont(font);
    QCOMPARE(button.sizeHint(), QSize(QFontMetrics(font).horizontalAdvance(widestLine), 47));
}

void TestGuiControls::menuBarButtonColours_data()
{
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("hovered");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("normal") << false << false << QColor(127, 149, 190);
    QTest::newRow("hovered") << false << true << QColor(154, 174, 209);
    QTest::newRow("checked") << true << false << QColor(Qt::white);
    QTest::newRow("checked and hovered") << true << true << QColor(Qt::white);
}

void TestGuiControls::menuBarButtonColours()
{
    QFETCH(bool, checked);
    QFETCH(bool, hovered);
    QFETCH(QColor, expected);

    const QColor all[] = {QColor(127, 149, 190), QColor(154, 174, 209), QColor(Qt::white)};
    const QString shot = QStringLiteral("%1%2").arg(checked ? "-checked" : "").arg(hovered ? "-hovered" : "");

    MenuBarButton bar;
    bar.setText(QStringLiteral("SSD\nMANAGEMENT"));
    bar.setFont(largeBold());
    bar.setCheckable(true);
    bar.setChecked(checked);
    bar.resize(220, 70);

    MenuButton item(QStringLiteral("MY SSD"));
    item.setFont(largeBold());
    item.setChecked(checked);
    item.resize(220, 40);

    for (QWidget* widget : {static_cast<QWidget*>(&bar), static_cast<QWidget*>(&item)}) {
        if (hovered) {
            QEvent enter(QEvent::Enter);
            QApplication::sendEvent(widget, &enter);
        }
        const QImage image =
            grabWidget(*widget, (widget == &bar ? QStringLiteral("menubarbutton") : QStringLiteral("menubutton")) + shot);
        QCOMPARE(colorText(image.pixelColor(1, 1)), colorText(QColor(0, 36, 94)));
        for (const QColor& color : all)
            QCOMPARE(containsColor(image, color), color == expected);

        if (hovered) {
            QEvent leave(QEvent::Leave);
            QApplication::sendEvent(widget, &leave);
            const QImage after = widget->grab().toImage().convertToFormat(QImage::Format_ARGB32);
            QCOMPARE(containsColor(after, QColor(127, 149, 190)), !checked);
        }
    }
}

void TestGuiControls::menuBarButtonKeepsItsWidth()
{
    MenuBarButton button;
    button.setText(QStringLiteral("SSD\nMANAGEMENT"));
    button.resize(240, 47);
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&button));
    QCOMPARE(button.minimumWidth(), 240);
    button.resize(100, 47);
    QCOMPARE(button.width(), 240);
}

void TestGuiControls::menuBarButtonAddsMenuItems()
{
    MenuBarButton button;
    button.setText(QStringLiteral("SSD\nMANAGEMENT"));
    QFont font = button.font();
    font.setBold(true);
    button.setFont(font);
    button.resize(230, 47);

    MenuButton* first = button.addMenuItem(QStringLiteral("MY SSD"));
    MenuButton* second = button.addMenuItem(QStringLiteral("SMART PARAMETERS"));
    QMenu* menu = button.menu();
    QVERIFY(menu);
    QCOMPARE(first->parent(), menu);
    QCOMPARE(second->parent(), menu);
    QCOMPARE(menu->actions().size(), 2);
    QCOMPARE(qobject_cast<QWidgetAction*>(menu->actions().at(1))->defaultWidget(), second);
    QCOMPARE(first->text(), QStringLiteral("MY SSD"));
    QCOMPARE(first->font().weight(), 50);
    QCOMPARE(first->font().family(), font.family());
    QCOMPARE(first->width(), 230);
    QCOMPARE(first->height(), 40);
    QVERIFY(first->isCheckable());

    QSignalSpy clicked(second, &QAbstractButton::clicked);
    second->click();
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.at(0).at(0).toBool(), true);
    QCOMPARE(first->isChecked(), false);
}

void TestGuiControls::menuButtonFollowsTheDropDown_data()
{
    QTest::addColumn<int>("parentWidth");
    QTest::newRow("wider drop-down") << 300;
    QTest::newRow("narrower drop-down") << 180;
}

void TestGuiControls::menuButtonFollowsTheDropDown()
{
    QFETCH(int, parentWidth);

    QWidget dropDown;
    dropDown.resize(parentWidth, 40);
    auto* item = new MenuButton(QStringLiteral("FIRMWARE UPDATE"), &dropDown);
    item->setFont(largeBold());
    item->setFixedWidth(240);

    grabWidget(dropDown, QStringLiteral("menubutton-in-%1").arg(parentWidth));
    QCOMPARE(item->width(), parentWidth);
    QCOMPARE(item->height(), 40);

    // Text starts at x = 50 and stands in the middle of the height.
    const QImage image = grabWidget(*item, QStringLiteral("menubutton-alone-%1").arg(parentWidth));
    const int left = leftmostColumnOf(image, QColor(127, 149, 190));
    QVERIFY2(left >= 50 && left <= 54, qPrintable(QString::number(left)));
    QVERIFY(!containsColor(image, QColor(127, 149, 190), QRect(0, 0, image.width(), 6)));
    QVERIFY(!containsColor(image, QColor(127, 149, 190), QRect(0, 34, image.width(), 6)));
}

KESTRAVIN_GUI_TEST_MAIN(TestGuiControls)
#include "tst_gui_controls.moc"
