#include "application/TrayNotifications.h"

#include <QTimer>

namespace Velmora::Application {

namespace {
constexpr int IntervalMs = 20000;
}

TrayNotifications::TrayNotifications(QObject* parent)
    : QObject(parent)
    , m_timer(new QTimer(this))
{
    m_timer->setSingleShot(true);
    m_timer->setInterval(IntervalMs);
    connect(m_timer, &QTimer::timeout, this, &TrayNotifications::showMessage);
}

void TrayNotifications::setInterval(int msec)
{
    m_timer->setInterval(msec);
}

QList<TrayNotifications::Entry>& TrayNotifications::queueOf(Kind kind)
{
    switch (kind) {
    case Critical: return m_criticalMessages;
    case Warning: return m_warningMessages;
    default: return m_informationMessages;
    }
}

void TrayNotifications::enqueue(Kind kind, const QString& message, const QVariant& data)
{
    queueOf(kind).append({message, data});
    showMessage();
}

void TrayNotifications::showMessage()
{
    if (m_timer->isActive())
        return;
    for (Kind kind : {Critical, Warning, Information}) {
        QList<Entry>& queue = queueOf(kind);
        if (queue.isEmpty())
            continue;
        const Entry entry = queue.takeFirst();
        m_currentData = entry.second;
        emit messageShown(QStringLiteral("KESTRAVIN"), entry.first, kind, ShowTimeMs);
        m_timer->start();
        return;
    }
    m_currentData = QVariant();
}

void TrayNotifications::stopWaiting()
{
    m_timer->stop();
}

} // namespace Velmora::Application
