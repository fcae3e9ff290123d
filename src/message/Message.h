#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

namespace Velmora::Message {

// One frame of the service pipe: a 12-byte little-endian header (sync, length, type) and a
// protobuf payload. The enumeration is the vocabulary of the pipe; its values travel on the wire.
class Message : public QObject
{
    Q_OBJECT

public:
    enum MessageType {
        Invalid = 0,
        Version = 1,
        Error = 2,
        CopyLogFilesRequest = 3,
        CopyLogFilesResponse = 4,
        FileList = 10,
        FileListRequest = 11,
        MigrationFilterTypeResponse = 36,
        MigrationFilterTypeRequest = 37,
        MigrationFilterSystemPaths = 38,
        FileCopyRequest = 70,
        FileCopyRequestCancel = 71,
        FileCopyResponse = 72,
        MigrationBootability = 73,
        Smart = 20,
        SmartRequest = 21,
        SystemInfo = 30,
        SystemInfoRequest = 31,
        FileCat = 34,
        FileTypeStructureReq = 35,
        SystemReport = 40,
        SystemTrimCommand = 41,
        DiskBenchmarkRequest = 50,
        DiskBenchmarkResponse = 51,
        PartitionCreate = 60,
        PartitionRemove = 61,
        PartitionFormat = 62,
        CleanDisk = 63,
        Msg1 = 1000,
        Msg2 = 1001,
        Msg3 = 1002,
        MessageType_Size = 1003
    };
    Q_ENUM(MessageType)

    static constexpr quint32 SyncPattern = 0xFE7419CD;
    static constexpr int HeaderSize = 12;
    // Where the machine's own service listens, for the service and the program alike.
    static constexpr const char* SystemSocket = "/run/kestravin/VelmoraServer";

    explicit Message(QObject* parent = nullptr);

    quint32 sync = SyncPattern;
    quint32 length = 0;
    MessageType type = Invalid;
    QByteArray payload;

    // The header fields as they stand, then the payload; the caller keeps `length` in step.
    QByteArray serialize() const;

    // The enumerator's name, or an empty string for a number that is no enumerator.
    static QString typeName(quint32 type);
    // Whether a number from the wire names an enumerator: only then may it become a MessageType.
    static bool isNamedType(quint32 type);
};

} // namespace Velmora::Message

