#include "message/FrameReader.h"
#include "message/Message.h"
#include "support/TestEnvironment.h"

#include <QTest>

using Velmora::Message::FrameReader;
using Velmora::Message::Message;

class TestMessage : public QObject
{
    Q_OBJECT

private slots:
    void serializesTheHeaderAsItStands_data();
    void serializesTheHeaderAsItStands();
    void frameReaderSkipsToTheNextFrame();
};

void TestMessage::serializesTheHeaderAsItStands_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<quint32>("length");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("payload appended") << int(Message::CleanDisk) << 2u << QByteArray("\x10\x02", 2)
                                      << QByteArray::fromHex("CD1974FE" "02000000" "3F000000" "1002");
    // The caller keeps the length in step; the frame writes what it is given.
    QTest::newRow("length as given") << int(Message::Version) << 7u << QByteArray("ab")
                                     << QByteArray::fromHex("CD1974FE" "07000000" "01000000" "6162");
}

void TestMessage::serializesTheHeaderAsItStands()
{
    QFETCH(int, type);
    QFETCH(quint32, length);
    QFETCH(QByteArray, payload);
    QFETCH(QByteArray, expected);

    Message message;
    QCOMPARE(message.sync, 0xFE7419CDu);
    message.type = static_cast<Message::MessageType>(type);
    message.length = length;
    message.payload = payload;
    QCOMPARE(message.serialize(), expected);
}

void TestMessage::frameReaderSkipsToTheNextFrame()
{
    FrameReader reader;
    reader.append(QByteArray("xyz") + FrameReader::encode(Message::Version, "ab"));
    reader.append(FrameReader::encode(Message::SystemInfoRequest, QByteArray()).left(6));

    FrameReader::Frame frame;
    QVERIFY(reader.next(frame));
    QCOMPARE(frame.type, quint32(Message::Version));
    QCOMPARE(frame.payload, QByteArray("ab"));
    QVERIFY(!reader.next(frame));
    QCOMPARE(reader.skippedBytes(), qint64(3));
    QCOMPARE(reader.pendingBytes(), 6);

    reader.append(FrameReader::encode(Message::SystemInfoRequest, QByteArray()).mid(6));
    QVERIFY(reader.next(frame));
    QCOMPARE(frame.type, quint32(Message::SystemInfoRequest));
    QVERIFY(frame.payload.isEmpty());
}

KESTRAVIN_TEST_SUITE(TestMessage)
#include "tst_message.moc"
