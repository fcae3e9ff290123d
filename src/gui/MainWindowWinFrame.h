#pragma once

#include "gui/MainWindow.h"

#include <QList>
#include <QPoint>
#include <QRect>
#include <QWidget>

#include <functional>

class QVBoxLayout;

namespace Velmora::Gui {

// The program's top-level window: frameless, hosting the MainWindow. It moves from the title area
// and resizes from a thin border, through the window manager when there is one and by itself
// otherwise. Closing only hides it; its place and zoom are kept in the settings.
class MainWindowWinFrame : public QWidget
{
    Q_OBJECT

public:
    static constexpr int minimumHeight = 600;
    static constexpr int minimumWidth = 900;
    static constexpr int defaultHeight = 1024;
    static constexpr int defaultWidth = 1280;

    // Builds the main window inside itself: made in its final place, under its final style sheet,
    // every widget of it is styled once.
    explicit MainWindowWinFrame(const MainWindow::Collaborators& collaborators, QWidget* parent = nullptr);
    ~MainWindowWinFrame() override;

    MainWindow* mainWindow() const { return m_mainWindow; }

    // Where windows may be placed; the available geometries of the screens unless a test says
    // otherwise.
    using ScreenAreas = std::function<QList<QRect>()>;
    void setScreenAreas(ScreenAreas areas);

    int borderWidth() const { return m_borderWidth; }
    int titleBarHeight() const { return m_titleBarHeight; }

public slots:
    void show();
    void showNormal();
    void maximize();
    void restore();

private slots:
    void onMaximizeWindowRequest();
    void onMinimizeWindowRequest();
    void onRestoreWindowRequest();
    void onCloseWindowRequest();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // Unzoom: a press on the title area of a maximized window, which restores it once dragged.
    enum class Drag { None, Move, Resize, Unzoom };

    void saveGeometry();
    void recordNormalGeometry();
    QRect lastNormalGeometry() const;
    bool fillsAnArea(const QRect& rect) const;
    // Moves or resizes (with edges) the window with the mouse from here on.
    void beginDrag(Qt::Edges edges, const QPoint& globalPos);
    void restoreUnder(const QPoint& globalPos);
    void showAfterHiding();
    Qt::Edges edgesAt(const QPoint& localPos) const;
    bool handleMousePress(QWidget* target, QMouseEvent* event);
    // Shows which way a press at the border would resize the window.
    void showResizeCursor(Qt::Edges edges);
    void dragTo(const QPoint& globalPos);

    int m_borderWidth = 6;
    int m_titleBarHeight = 64;
    MainWindow* m_mainWindow;
    QVBoxLayout* layout;
    bool maximized = false;
    bool shownBefore = false;
    ScreenAreas screenAreas;
    // The last two places the window had while neither zoomed nor minimized.
    QRect normalGeometry;
    QRect previousNormalGeometry;

    Drag drag = Drag::None;
    Qt::Edges dragEdges;
    Qt::Edges cursorEdges;
    QPoint dragStart;
    QRect dragStartGeometry;
};

} // namespace Velmora::Gui
