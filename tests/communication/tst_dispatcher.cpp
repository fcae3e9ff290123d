#include "communication/Dispatcher.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QSignalSpy>
#include <QTest>

using Velmora::Communication::Dispatcher;
using Velmora::Communication::Handler;
using Velmora::Message::Message;

namespace {

// Records what reaches it, in one journal shared by all handlers of a test so that the order of
// calls across handlers can be checked.
class RecordingHandler : public Handler
{
    Q_OBJECT

public:
    RecordingHandler(const QString& name, QList<MessageType> types, QStringList* journal)
        : m_journal(journal)
    {
        setName(name);
        setMessageTypes(types);
    }

    void clientConnected() override { m_journal->append(name() + QStringLiteral(" connected")); }
    void handleMessage(MessageType type, QByteArray payload) override
    {
        m_journal->append(QStringLiteral("%1 %2 %3").arg(name(), Message::typeName(type), QString::fromLatin1(payload)));
    }

    void send(MessageType type) { emit sendMessage(type); }
    void send(MessageType type, const QByteArray& payload) { emit sendMessage(type, payload); }

private:
    QStringList* m_journal;
};

} // namespace

class TestDispatcher : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<Message::MessageType>(); }
    void refusesDoubleRegistrationPerType();
    void deliversInRegistrationOrder();
};

void TestDispatcher::refusesDoubleRegistrationPerType()
{
    QStringList journal;
    RecordingHandler handler(QStringLiteral("SmartManager"), {Message::Smart, Message::Version}, &journal);
    Dispatcher dispatcher;
    QVERIFY(dispatcher.registerHandler(&handler));

    LogCapture log;
    QVERIFY(!dispatcher.registerHandler(&handler));
    QCOMPARE(log.messages(Velmora::Logger::Error),
        (QStringList{QStringLiteral("Handler SmartManager is already registred for message Smart"),
            QStringLiteral("Handler SmartManager is already registred for message Version")}));
    QCOMPARE(dispatcher.handlers().size(), 1);

    dispatcher.dispatchMessage(Message::Smart, "once");
    QCOMPARE(journal, QStringList{QStringLiteral("SmartManager Smart once")});

    // Sending is connected once as well.
    QSignalSpy toClient(&dispatcher, &Dispatcher::sendMessageToClient);
    handler.send(Message::SmartRequest);
    QCOMPARE(toClient.count(), 1);
}

void TestDispatcher::deliversInRegistrationOrder()
{
    QStringList journal;
    RecordingHandler second(QStringLiteral("B"), {Message::SystemInfo}, &journal);
    RecordingHandler first(QStringLiteral("A"), {Message::Smart, Message::SystemInfo}, &journal);
    Dispatcher dispatcher;
    dispatcher.registerHandler(&first);
    dispatcher.registerHandler(&second);

    dispatcher.dispatchMessage(Message::SystemInfo, "x");
    dispatcher.dispatchMessage(Message::Smart, "y");
    QCOMPARE(journal, (QStringList{QStringLiteral("A SystemInfo x"), QStringLiteral("B SystemInfo x"),
                          QStringLiteral("A Smart y")}));
}

KESTRAVIN_TEST_SUITE(TestDispatcher)
#include "tst_dispatcher.moc"
