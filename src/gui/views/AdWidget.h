#pragma once

#include <QPixmap>
#include <QUrl>
#include <QWidget>

class QLabel;
class QMovie;
class QPushButton;

namespace Velmora::Gui {

// The advertisement over the main window's body: one picture, still or animated, scaled down to
// fit inside the widget, and a close button. A press anywhere on it opens the advertiser's link.
class AdWidget : public QWidget
{
    Q_OBJECT

public:
    explicit AdWidget(QWidget* parent = nullptr);

    void showAd(QString filePath, QUrl url);

signals:
    void closeRequest();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    bool showPicture(const QString& filePath);
    bool showMovie(const QString& filePath);
    void clearPicture();
    void placeCloseButton();

    QLabel* labelAd = nullptr;
    QPushButton* pushButtonClose = nullptr;

    QUrl url;
    QPixmap pixmap;
    QMovie* movie = nullptr;
};

} // namespace Velmora::Gui
