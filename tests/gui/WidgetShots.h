#pragma once

#include <QDir>
#include <QImage>
#include <QPixmap>
#include <QString>
#include <QTest>
#include <QWidget>

// Pictures of the widgets as the tests left them, kept in the suite's temporary directory for a
// look by eye.
inline void saveWidgetShot(const QImage& image, const QString& name)
{
    const QDir dir(QDir::temp().filePath(QStringLiteral("widget-shots")));
    QDir().mkpath(dir.path());
    const QString path = dir.filePath(name + QStringLiteral(".png"));
    QVERIFY2(image.save(path), qPrintable(path));
}

inline QImage grabWidget(QWidget& widget, const QString& shotName)
{
    const QImage image = widget.grab().toImage().convertToFormat(QImage::Format_ARGB32);
    saveWidgetShot(image, shotName);
    return image;
}

// Whether any pixel of the image, inside `area`, has exactly this colour.
inline bool containsColor(const QImage& image, const QColor& color, QRect area = QRect())
{
    if (area.isNull())
        area = image.rect();
    area &= image.rect();
    const QRgb wanted = color.rgb();
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixel(x, y) == wanted)
                return true;
        }
    }
    return false;
}

inline QString colorText(const QColor& c)
{
    return QStringLiteral("rgba(%1, %2, %3, %4)").arg(c.red()).arg(c.green()).arg(c.blue()).arg(c.alpha());
}
