#include "gui/MainWindowWinFrame.h"

#include "gui/MainWindow.h"
#include "settings/SettingsManager.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

#include <algorithm>

namespace Velmora::Gui {

namespace {

const QString Group = QStringLiteral("MainWindow");
const QString GeometryKey = QStringLiteral("Geometry");
const QString MaximizedKey = QStringLiteral("isMaximized");

QList<QRect> availableScreenAreas()
{
    QList<QRect> areas;
    for (const QScreen* screen : QGuiApplication::screens())
        areas.append(screen->availableGeometry());
    return areas;
}

} // namespace

MainWindowWinFrame::MainWindowWinFrame(const MainWindow::Collaborators& collaborators, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint)
    , m_mainWindow(new MainWindow(collaborators, this))
    , layout(new QVBoxLayout(this))
    , screenAreas(availableScreenAreas)
{
    setWindowTitle(QStringLiteral("KESTRAVIN SSD"));
    // Closing the window leaves the program in the tray; only the tray's quit ends it.
    setAttribute(Qt::WA_QuitOnClose, false);
    setMinimumSize(minimumWidth, minimumHeight);
    resize(defaultWidth, defaultHeight);

    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_mainWindow);
    m_mainWindow->setVisible(true);
    m_titleBarHeight = m_mainWindow->headerHeight();

    connect(m_mainWindow, &MainWindow::minimizeWindowRequest, this, &MainWindowWinFrame::onMinimizeWindowRequest);
    connect(m_mainWindow, &MainWindow::maximizeWindowRequest, this, &MainWindowWinFrame::onMaximizeWindowRequest);
    connect(m_mainWindow, &MainWindow::restoreWindowRequest, this, &MainWindowWinFrame::onRestoreWindowRequest);
    connect(m_mainWindow, &MainWindow::closeWindowRequest, this, &MainWindowWinFrame::onCloseWindowRequest);

    // Presses land on the widgets of the main window, not on the frame: watch them all to find the
    // ones on the border and in the title area.
    qApp->installEventFilter(this);
}

MainWindowWinFrame::~MainWindowWinFrame()
{
    qApp->removeEventFilter(this);
}

void MainWindowWinFrame::setScreenAreas(ScreenAreas areas)
{
    screenAreas = std::move(areas);
}

void MainWindowWinFrame::show()
{
    if (shownBefore) {
        if (isVisible() && !isMinimized()) {
            raise();
            activateWindow();
            return;
        }
        showAfterHiding();
        return;
    }
    shownBefore = true;

    QRect saved(QPoint(1, 1), QPoint(defaultWidth, defaultHeight));
    if (Settings::SettingsManager::contains(Group, GeometryKey))
        saved = Settings::SettingsManager::value(Group, GeometryKey).toRect();

    const QList<QRect> areas = screenAreas();
    const bool onScreen = std::any_of(areas.begin(), areas.end(),
        [&saved](const QRect& area) { return area.contains(saved.topLeft()); });
    int left = saved.left();
    int top = saved.top();
    int width = saved.right() - left;
    int height = saved.bottom() - top;
    if (!onScreen) {
        // The screen it was on is gone: start at the origin; the zoom below catches a window
        // that no longer fits.
        left = 0;
        top = 0;
        width = saved.right();
        height = saved.bottom();
    }
    QRect placed(left, top, width + 1, height + 1);

    bool toMaximize = Settings::SettingsManager::value(Group, MaximizedKey, false).toBool();
    for (const QRect& area : areas) {
        if (area.contains(placed.center())) {
            if (placed.width() > area.width() || placed.height() > area.height())
                toMaximize = true;
            // Without a window manager nothing zooms the window, and it would reach past the screen:
            // it comes up inside the area at a size that fits, which is also where a restore takes it.
            placed.setSize(placed.size().boundedTo(area.size()).expandedTo(minimumSize()));
            placed.moveLeft(std::max(area.left(), std::min(placed.left(), area.right() + 1 - placed.width())));
            placed.moveTop(std::max(area.top(), std::min(placed.top(), area.bottom() + 1 - placed.height())));
            break;
        }
    }
    setGeometry(placed);

    QWidget::show();
    raise();
    activateWindow();
    if (toMaximize) {
        maximize();
    } else {
        m_mainWindow->setMaximizeButtonVisible(true);
        maximized = false;
    }
}

void MainWindowWinFrame::showAfterHiding()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    QWidget::show();
    raise();
    activateWindow();
    if (maximized) {
        maximize();
    } else {
        m_mainWindow->setMaximizeButtonVisible(true);
        maximized = false;
    }
}

void MainWindowWinFrame::showNormal()
{
    m_mainWindow->setMaximizeButtonVisible(true);
    maximized = false;
}

void MainWindowWinFrame::maximize()
{
    saveGeometry();
    QWidget::showMaximized();
    m_mainWindow->setMaximizeButtonVisible(false);
    maximized = true;
}

void MainWindowWinFrame::restore()
{
    QWidget::showNormal();
    m_mainWindow->setMaximizeButtonVisible(true);
    maximized = false;
}

void MainWindowWinFrame::saveGeometry()
{
    if (!shownBefore)
        return;
    const bool zoomed = isMaximized();
    Settings::SettingsManager::setValue(Group, MaximizedKey, zoomed);
    maximized = zoomed;
    // A zoomed window keeps the place it will return to: the last it had before the zoom.
    const QRect normal = zoomed ? lastNormalGeometry() : geometry();
    if (normal.isValid())
        Settings::SettingsManager::setValue(Group, GeometryKey, normal);
}

void MainWindowWinFrame::recordNormalGeometry()
{
    if (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen | Qt::WindowMinimized))
        return;
    const QRect current = geometry();
    if (current == normalGeometry)
        return;
    previousNormalGeometry = normalGeometry;
    normalGeometry = current;
}

QRect MainWindowWinFrame::lastNormalGeometry() const
{
    // A window manager may give the window the whole screen before it says that it zoomed it: the
    // place before that is the one to return to.
    if (fillsAnArea(normalGeometry) && previousNormalGeometry.isValid())
        return previousNormalGeometry;
    return normalGeometry;
}

bool MainWindowWinFrame::fillsAnArea(const QRect& rect) const
{
    const QList<QRect> areas = screenAreas();
    return std::any_of(areas.begin(), areas.end(), [&rect](const QRect& area) { return rect.contains(area); });
}

void MainWindowWinFrame::onMaximizeWindowRequest()
{
    maximize();
}

void MainWindowWinFrame::onMinimizeWindowRequest()
{
    showMinimized();
}

void MainWindowWinFrame::onRestoreWindowRequest()
{
    restore();
}

void MainWindowWinFrame::onCloseWindowRequest()
{
    saveGeometry();
    hide();
}

void MainWindowWinFrame::closeEvent(QCloseEvent* event)
{
    // Closing hides the window; the program stays in the tray.
    saveGeometry();
    QWidget::closeEvent(event);
}

void MainWindowWinFrame::changeEvent(QEvent* event)
{
    // The window manager may zoom or restore the window without our buttons.
    if (event->type() == QEvent::WindowStateChange && !isMinimized()) {
        // Keyboard or snapping: the place before the zoom is kept as our own maximize keeps it.
        if (isMaximized() && !maximized)
            saveGeometry();
        maximized = isMaximized();
        m_mainWindow->setMaximizeButtonVisible(!maximized);
    }
    QWidget::changeEvent(event);
}

void MainWindowWinFrame::moveEvent(QMoveEvent* event)
{
    recordNormalGeometry();
    QWidget::moveEvent(event);
}

void MainWindowWinFrame::resizeEvent(QResizeEvent* event)
{
    recordNormalGeometry();
    QWidget::resizeEvent(event);
}

Qt::Edges MainWindowWinFrame::edgesAt(const QPoint& localPos) const
{
    Qt::Edges edges;
    if (localPos.x() < m_borderWidth)
        edges |= Qt::LeftEdge;
    if (localPos.x() >= width() - m_borderWidth)
        edges |= Qt::RightEdge;
    if (localPos.y() < m_borderWidth)
        edges |= Qt::TopEdge;
    if (localPos.y() >= height() - m_borderWidth)
        edges |= Qt::BottomEdge;
    return edges;
}

bool MainWindowWinFrame::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease
        && type != QEvent::MouseButtonDblClick)
        return false;
    auto* mouse = static_cast<QMouseEvent*>(event);
    // The window itself sees every move, also over children that don't track the mouse.
    if (type == QEvent::MouseMove && watched == windowHandle() && drag == Drag::None) {
        showResizeCursor(mouse->buttons() == Qt::NoButton && !isMaximized()
                ? edgesAt(mapFromGlobal(mouse->globalPos()))
                : Qt::Edges());
        return false;
    }
    auto* target = qobject_cast<QWidget*>(watched);
    if (!target || target->window() != this)
        return false;

    switch (type) {
    case QEvent::MouseButtonPress:
        return handleMousePress(target, mouse);
    case QEvent::MouseMove:
        if (drag == Drag::None)
            return false;
        if (drag != Drag::Unzoom)
            dragTo(mouse->globalPos());
        else if ((mouse->globalPos() - dragStart).manhattanLength() >= QApplication::startDragDistance())
            restoreUnder(mouse->globalPos());
        return true;
    case QEvent::MouseButtonRelease:
        if (drag == Drag::None)
            return false;
        drag = Drag::None;
        return true;
    default: {
        const QPoint local = mapFromGlobal(mouse->globalPos());
        if (mouse->button() != Qt::LeftButton || local.y() >= m_titleBarHeight || !m_mainWindow->isCaptionWidget(target))
            return false;
        if (isMaximized())
            restore();
        else
            maximize();
        return true;
    }
    }
}

void MainWindowWinFrame::showResizeCursor(Qt::Edges edges)
{
    if (edges == cursorEdges)
        return;
    cursorEdges = edges;
    const bool leading = edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge);
    const bool trailing = edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge);
    if (!edges)
        unsetCursor();
    else if (leading)
        setCursor(Qt::SizeFDiagCursor);
    else if (trailing)
        setCursor(Qt::SizeBDiagCursor);
    else if (edges & (Qt::LeftEdge | Qt::RightEdge))
        setCursor(Qt::SizeHorCursor);
    else
        setCursor(Qt::SizeVerCursor);
}

bool MainWindowWinFrame::handleMousePress(QWidget* target, QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return false;
    const QPoint local = mapFromGlobal(event->globalPos());
    const bool onCaption = local.y() < m_titleBarHeight && m_mainWindow->isCaptionWidget(target);
    if (isMaximized()) {
        // A zoomed window has no border to resize by, but its title area pulls it back to its place.
        if (!onCaption)
            return false;
        drag = Drag::Unzoom;
        dragStart = event->globalPos();
        return true;
    }
    const Qt::Edges edges = edgesAt(local);
    if (!edges && !onCaption)
        return false;
    beginDrag(edges, event->globalPos());
    return true;
}

void MainWindowWinFrame::beginDrag(Qt::Edges edges, const QPoint& globalPos)
{
    QWindow* window = windowHandle();
    const bool systemDrag = window && (edges ? window->startSystemResize(edges) : window->startSystemMove());
    // No window manager to do it (Xvfb, some kiosks): follow the mouse ourselves.
    drag = systemDrag ? Drag::None : edges ? Drag::Resize : Drag::Move;
    dragEdges = edges;
    dragStart = globalPos;
    dragStartGeometry = geometry();
}

void MainWindowWinFrame::restoreUnder(const QPoint& globalPos)
{
    // The restored window stays under the cursor where the user grabbed it: at the same height in
    // the title area, and at the same share of its width.
    const double share = double(dragStart.x() - x()) / std::max(1, width());
    const int grabbedY = dragStart.y() - y();
    QRect normal = lastNormalGeometry();
    if (!normal.isValid())
        normal.setSize(QSize(defaultWidth, defaultHeight));
    restore();
    normal.moveTopLeft(QPoint(globalPos.x() - qRound(share * normal.width()), globalPos.y() - grabbedY));
    setGeometry(normal);
    beginDrag(Qt::Edges(), globalPos);
}

void MainWindowWinFrame::dragTo(const QPoint& globalPos)
{
    const QPoint delta = globalPos - dragStart;
    if (drag == Drag::Move) {
        move(dragStartGeometry.topLeft() + delta);
        return;
    }
    QRect target = dragStartGeometry;
    const int minW = minimumWidth;
    const int minH = minimumHeight;
    if (dragEdges & Qt::LeftEdge)
        target.setLeft(std::min(target.left() + delta.x(), target.right() - minW + 1));
    if (dragEdges & Qt::RightEdge)
        target.setRight(std::max(target.right() + delta.x(), target.left() + minW - 1));
    if (dragEdges & Qt::TopEdge)
        target.setTop(std::min(target.top() + delta.y(), target.bottom() - minH + 1));
    if (dragEdges & Qt::BottomEdge)
        target.setBottom(std::max(target.bottom() + delta.y(), target.top() + minH - 1));
    setGeometry(target);
}

} // namespace Velmora::Gui
