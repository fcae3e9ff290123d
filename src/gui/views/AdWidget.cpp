#include "gui/views/AdWidget.h"

#include "logger/Logger.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QLabel>
#include <QMouseEvent>
#include <QMovie>
#include <QPushButton>
#include <QVBoxLayout>

namespace Velmora::Gui {

namespace {

const char* const Stylesheet = R"(
#AdWidget { background-color: rgb(0, 10, 50); }
#labelAd { background: transparent; }
#pushButtonClose {
    color: rgb(255, 255, 255); background-color: rgb(0, 36, 94); border: 1px solid rgb(255, 255, 255);
    font: 13px "Inter UI Semi Bold"; padding: 6px 18px;
}
#pushButtonClose:hover { background-color: rgb(0, 34, 89); }
)";

// Free space kept between a large picture and each edge of the widget.
constexpr int Margin = 10;

// The picture's size once it fits: first the width is brought down to the widget's width less the
// margins, then the height, each time keeping the aspect. Smaller pictures keep their size.
QSize fittedSize(QSize size, const QSize& room)
{
    const int width = room.width() - 2 * Margin;
    if (width > 0 && size.width() >= width + 1)
        size = QSize(width, qRound(size.height() * double(width) / size.width()));
    const int height = room.height() - 2 * Margin;
    if (height > 0 && size.height() >= height + 1)
        size = QSize(qRound(size.width() * double(height) / size.height()), height);
    return size;
}

} // namespace

AdWidget::AdWidget(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("AdWidget"));
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(QString::fromUtf8(Stylesheet));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    labelAd = new QLabel(this);
    labelAd->setObjectName(QStringLiteral("labelAd"));
    labelAd->setAlignment(Qt::AlignCenter);
    // The picture is fitted to the widget, never the widget to the picture.
    labelAd->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    layout->addWidget(labelAd);

    // The button floats over the picture's corner so that the picture keeps the whole area.
    pushButtonClose = new QPushButton(tr("CLOSE"), this);
    pushButtonClose->setObjectName(QStringLiteral("pushButtonClose"));
    pushButtonClose->setCursor(Qt::ArrowCursor);
    pushButtonClose->setFocusPolicy(Qt::NoFocus);
    pushButtonClose->raise();
    connect(pushButtonClose, &QPushButton::clicked, this, &AdWidget::closeRequest);
    placeCloseButton();
}

void AdWidget::showAd(QString filePath, QUrl url)
{
    this->url = url;
    if (url.isEmpty())
        unsetCursor();
    else
        setCursor(Qt::PointingHandCursor);
    const QString suffix = QFileInfo(filePath).completeSuffix().toLower();
    Logger::debug(QString(), QStringLiteral("Advertisement file extension: ") + suffix);

    clearPicture();
    bool shown = false;
    if (suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg") || suffix == QLatin1String("png"))
        shown = showPicture(filePath);
    else if (suffix == QLatin1String("gif"))
        shown = showMovie(filePath);

    if (!shown) {
        // An empty panel over the body would only hide the program: ask to be closed instead.
        Logger::error(QString(), QStringLiteral("Unable to load advertisement from file"));
        emit closeRequest();
    }
}

bool AdWidget::showPicture(const QString& filePath)
{
    QImageReader reader(filePath);
    QImage image = reader.read();
    if (image.isNull()) {
        Logger::warning(QString(), QStringLiteral("Advertisement picture %1 unreadable: %2").arg(filePath, reader.errorString()));
        return false;
    }
    const QSize size = fittedSize(image.size(), this->size());
    if (size != image.size())
        image = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    pixmap = QPixmap::fromImage(image);
    labelAd->setPixmap(pixmap);
    return true;
}

bool AdWidget::showMovie(const QString& filePath)
{
    movie = new QMovie(filePath, QByteArray(), this);
    // The header alone makes a movie valid: only a decoded first frame shows that it plays.
    if (!movie->isValid() || !movie->jumpToFrame(0) || movie->currentImage().isNull()) {
        Logger::warning(QString(), QStringLiteral("Advertisement animation %1 unreadable: %2")
                                       .arg(filePath, movie->lastErrorString()));
        clearPicture();
        return false;
    }
    // Until a scaled size is set the movie reports none; its frames' own size stands in for it.
    QSize size = movie->scaledSize();
    if (!size.isValid())
        size = movie->currentImage().size();
    movie->setScaledSize(fittedSize(size, this->size()));
    labelAd->setMovie(movie);
    movie->start();
    return true;
}

void AdWidget::clearPicture()
{
    labelAd->clear();
    pixmap = QPixmap();
    if (movie) {
        movie->stop();
        delete movie;
        movie = nullptr;
    }
}

void AdWidget::mousePressEvent(QMouseEvent* event)
{
    if (!url.isEmpty())
        QDesktopServices::openUrl(url);
    QWidget::mousePressEvent(event);
}

void AdWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    placeCloseButton();
}

void AdWidget::placeCloseButton()
{
    pushButtonClose->adjustSize();
    pushButtonClose->move(width() - Margin - pushButtonClose->width(), Margin);
}

} // namespace Velmora::Gui
