#pragma once

#include <QList>
#include <QObject>
#include <QPair>
#include <QString>
#include <QVariant>

class QTimer;

namespace Velmora::Application {

// The queue of tray notifications. Nothing is shown directly: critical messages go first, then
// warnings, then information, each first in first out, and at least 20 s apart unless the user
// clicks one away.
class TrayNotifications : public QObject
{
    Q_OBJECT

public:
    enum Kind { Information = 0, Warning = 1, Critical = 2 };
    Q_ENUM(Kind)

    static constexpr int ShowTimeMs = 10000;

    explicit TrayNotifications(QObject* parent = nullptr);

    void setInterval(int msec);
    // The data of the notification shown last: invalid, or a drive id.
    QVariant currentData() const { return m_currentData; }

public slots:
    void enqueue(Velmora::Application::TrayNotifications::Kind kind, const QString& message, const QVariant& data);
    // Shows the next notification unless the last one is still within its interval.
    void showMessage();
    void stopWaiting();

signals:
    void messageShown(QString title, QString message, Velmora::Application::TrayNotifications::Kind kind, int msecs);

private:
    using Entry = QPair<QString, QVariant>;
    QList<Entry>& queueOf(Kind kind);

    QList<Entry> m_informationMessages;
    QList<Entry> m_warningMessages;
    QList<Entry> m_criticalMessages;
    QVariant m_currentData;
    QTimer* m_timer;
};

} // namespace Velmora::Application
