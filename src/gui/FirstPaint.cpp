#include "gui/FirstPaint.h"

#include <QEvent>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace Velmora::Gui {

namespace {

const int LongestWaitMs = 3000;

// Watches the native window for its first exposure. The widget paints it while handling that
// event, so the work is queued behind it rather than run from the filter.
class FirstPaintWatcher : public QObject
{
public:
    FirstPaintWatcher(QWindow* window, QObject* context, std::function<void()> work)
        : QObject(context)
        , m_window(window)
        , m_work(std::move(work))
    {
        window->installEventFilter(this);
        QTimer::singleShot(LongestWaitMs, this, &FirstPaintWatcher::runSoon);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Expose && m_window->isExposed())
            runSoon();
        return QObject::eventFilter(watched, event);
    }

private:
    void runSoon()
    {
        if (m_window)
            m_window->removeEventFilter(this);
        if (m_work)
            QTimer::singleShot(0, parent(), std::exchange(m_work, nullptr));
        deleteLater();
    }

    QPointer<QWindow> m_window;
    std::function<void()> m_work;
};

} // namespace

void runAfterFirstPaint(QWidget* window, QObject* context, std::function<void()> work)
{
    QWindow* handle = window->isVisible() ? window->windowHandle() : nullptr;
    if (!handle) {
        QTimer::singleShot(0, context, std::move(work));
        return;
    }
    new FirstPaintWatcher(handle, context, std::move(work));
}

} // namespace Velmora::Gui
