#include "message/FrameReader.h"
#include "message/Message.h"
#include "support/TestEnvironment.h"

#include "DiskPerformance.pb.h"
#include "FileTypeStructure.pb.h"
#include "Migration.pb.h"
#include "PartitionInfo.pb.h"
#include "SystemInfo.pb.h"
#include "SystemSummary.pb.h"
#include "Version.pb.h"

#include <google/protobuf/util/json_util.h>

#include <QTest>

#include <functional>
#include <type_traits>

using Velmora::Message::FrameReader;
using Velmora::Message::Message;
namespace pb = Velmora::Message;

// Four schemas carry descriptors so that they can be printed as JSON; all others are lite.
static_assert(std::is_base_of_v<google::protobuf::Message, pb::PartitionInfo>);
static_assert(std::is_base_of_v<google::protobuf::Message, pb::SystemInfo>);
static_assert(std::is_base_of_v<google::protobuf::Message, pb::SystemSummary>);
static_assert(!std::is_base_of_v<google::protobuf::Message, pb::Version>);
static_assert(!std::is_base_of_v<google::protobuf::Message, pb::FileCopyRequest>);

using Builder = std::function<QByteArray()>;
Q_DECLARE_METATYPE(Builder)

namespace {

template <typename T>
QByteArray serialized(const T& message)
{
    QByteArray bytes;
    bytes.resize(static_cast<int>(message.ByteSizeLong()));
    message.SerializeToArray(bytes.data(), bytes.size());
    return bytes;
}

} // namespace

class TestMessage : public QObject
{
    Q_OBJECT

private slots:
    void serializesTheHeaderAsItStands_data();
    void serializesTheHeaderAsItStands();
    void namesTypes_data();
    void namesTypes();
    void putsFieldsUnderTheirNumbers_data();
    void putsFieldsUnderTheirNumbers();
    void parsesEmptyPayloads();
    void printsDescribedMessagesAsJson();
    void frameReaderSkipsToTheNextFrame();
};

void TestMessage::serializesTheHeaderAsItStands_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<quint32>("length");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("invalid default") << int(Message::Invalid) << 0u << QByteArray()
                                     << QByteArray::fromHex("CD1974FE" "00000000" "00000000");
    QTest::newRow("system info request") << int(Message::SystemInfoRequest) << 0u << QByteArray()
                                         << QByteArray::fromHex("CD1974FE" "00000000" "1F000000");
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

void TestMessage::namesTypes_data()
{
    QTest::addColumn<quint32>("value");
    QTest::addColumn<QString>("name");

    // The numbers are the wire protocol; a wrong one would talk past the service.
    const QList<QPair<quint32, QString>> table = {{0, "Invalid"}, {1, "Version"}, {2, "Error"},
        {3, "CopyLogFilesRequest"}, {4, "CopyLogFilesResponse"}, {10, "FileList"}, {11, "FileListRequest"},
        {36, "MigrationFilterTypeResponse"}, {37, "MigrationFilterTypeRequest"}, {38, "MigrationFilterSystemPaths"},
        {70, "FileCopyRequest"}, {71, "FileCopyRequestCancel"}, {72, "FileCopyResponse"},
        {73, "MigrationBootability"}, {20, "Smart"}, {21, "SmartRequest"}, {30, "SystemInfo"},
        {31, "SystemInfoRequest"}, {34, "FileCat"}, {35, "FileTypeStructureReq"}, {40, "SystemReport"},
        {41, "SystemTrimCommand"}, {50, "DiskBenchmarkRequest"}, {51, "DiskBenchmarkResponse"},
        {60, "PartitionCreate"}, {61, "PartitionRemove"}, {62, "PartitionFormat"}, {63, "CleanDisk"},
        {1000, "Msg1"}, {1001, "Msg2"}, {1002, "Msg3"}, {1003, "MessageType_Size"}, {5, ""}, {999, ""}, {4000000000u, ""}};
    for (const auto& entry : table)
        QTest::addRow("%u", entry.first) << entry.first << entry.second;
}

void TestMessage::namesTypes()
{
    QFETCH(quint32, value);
    QFETCH(QString, name);
    QCOMPARE(Message::typeName(value), name);
}

void TestMessage::putsFieldsUnderTheirNumbers_data()
{
    QTest::addColumn<Builder>("build");
    QTest::addColumn<QByteArray>("wire");

    QTest::newRow("partition: file system is field 14, logical field 16") << Builder([] {
        pb::PartitionInfo p;
        p.set_filesystem("NTFS");
        p.set_islogical(true);
        return serialized(p);
    }) << QByteArray::fromHex("72044e544653" "800101");
    QTest::newRow("drive: partition style is field 15") << Builder([] {
        pb::SystemInfo::DriveInfo d;
        d.set_driveid(3);
        d.set_partitionformatstyle(pb::SystemInfo::DriveInfo::GPT);
        d.set_satacurrentspeed(pb::SystemInfo::DriveInfo::GEN3_600MB);
        return serialized(d);
    }) << QByteArray::fromHex("0803" "7004" "7801");
    QTest::newRow("benchmark request") << Builder([] {
        pb::DiskPerformanceRequest r;
        r.set_driveid(1);
        r.set_filesize(134217728);
        r.set_blocksize(4194304);
        return serialized(r);
    }) << QByteArray::fromHex("0801" "1080808040" "1880808002");
    QTest::newRow("copy report: bytes copied is field 2") << Builder([] {
        pb::FileCopyReport r;
        r.set_code(pb::PROGRESS);
        r.set_copiedsize(300);
        r.add_faultedfiles("a");
        return serialized(r);
    }) << QByteArray::fromHex("0801" "10ac02" "2a0161");
    QTest::newRow("file type scan: partition id is signed") << Builder([] {
        pb::FileTypeStructure s;
        s.set_partitionid(-1);
        return serialized(s);
    }) << QByteArray::fromHex("30ffffffffffffffffff01");
    QTest::newRow("bootability") << Builder([] {
        pb::MigrationBootability b;
        b.set_driveid(2);
        b.set_ospartitionid(3);
        b.set_bootpartitionid(1);
        return serialized(b);
    }) << QByteArray::fromHex("1002" "1803" "2001");
}

void TestMessage::putsFieldsUnderTheirNumbers()
{
    QFETCH(Builder, build);
    QFETCH(QByteArray, wire);
    QCOMPARE(build().toHex(), wire.toHex());
}

void TestMessage::parsesEmptyPayloads()
{
    // All-zero messages travel as empty payloads, which is no parse failure.
    pb::Version version;
    QVERIFY(serialized(version).isEmpty());
    QVERIFY(version.ParseFromArray(nullptr, 0));
    pb::SystemInfo info;
    QVERIFY(info.ParseFromArray(nullptr, 0));
    QCOMPARE(info.drives_size(), 0);

    const QByteArray garbage = QByteArray::fromHex("ffffffff");
    QVERIFY(!info.ParseFromArray(garbage.constData(), garbage.size()));
}

void TestMessage::printsDescribedMessagesAsJson()
{
    pb::SystemInfo info;
    pb::SystemInfo::DriveInfo* drive = info.add_drives();
    drive->set_driveid(1);
    drive->set_size(512110190592ull);
    drive->add_partitions()->set_letter("C:");

    std::string json;
    google::protobuf::util::JsonPrintOptions options;
    options.always_print_primitive_fields = true;
    QVERIFY(google::protobuf::util::MessageToJsonString(info, &json, options).ok());
    const QByteArray text = QByteArray::fromStdString(json);
    QVERIFY2(text.contains("\"Size\":\"512110190592\""), text.constData());
    QVERIFY(text.contains("\"Letter\":\"C:\""));
    QVERIFY(text.contains("\"IsLogical\":false"));
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

KESTRAVIN_TEST_MAIN(TestMessage)
#include "tst_message.moc"
