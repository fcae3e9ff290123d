#pragma once

#include "system/Bytes.h"

#include <QList>
#include <QObject>
#include <QString>

namespace Velmora::System {

// One partition of a drive as the service reported it, or a stretch of unused space between
// partitions (type UnusedSpace, negative id).
class Partition : public QObject
{
    Q_OBJECT

public:
    enum PartitionType { MBR = 0, GPT = 1, RAW = 2, UnusedSpace = 3 };
    Q_ENUM(PartitionType)

    static const QList<int> extendedMbrTypes;
    static const char* const efiSystemGuid;
    static const char* const microsoftReservedGuid;
    static const char* const recoveryGuid;

    Partition(int id, const QString& letter, const QString& label, const Bytes& size, const Bytes& used,
        const Bytes& offset, PartitionType type, quint32 mbrType, const QString& gptType, const QString& volumeName,
        const QString& fileSystem, bool isBootable, bool isLogical, QObject* parent = nullptr);

    int id() const { return m_id; }
    QString letter() const { return m_letter; }
    QString label() const { return m_label; }
    QString volumeName() const { return m_volumeName; }
    QString fileSystem() const { return m_fileSystem; }
    Bytes size() const { return m_size; }
    Bytes used() const { return m_used; }
    PartitionType type() const { return m_type; }
    quint32 mbrType() const { return m_mbrType; }
    QString gptType() const { return m_gptType; }
    bool isLogical() const { return m_isLogical; }
    bool isBootable() const { return m_isBootable; }
    QString os() const { return m_os; }

    virtual void setUsed(const Bytes& used);
    virtual Bytes offset() const { return m_offset; }
    virtual QString toString() const;

    void setLetter(const QString& letter);
    void setLabel(const QString& label);
    void setSize(const Bytes& size);
    void setOffset(const Bytes& offset);
    void setType(PartitionType type);
    void setMbrType(quint32 mbrType);
    void setGptType(const QString& gptType);
    void setVolumeName(const QString& volumeName);
    void setFileSystem(const QString& fileSystem);
    void setBootable(bool isBootable);
    void setLogical(bool isLogical);
    void setOs(const QString& os);

    Bytes end() const { return offset() + m_size; }
    Bytes free() const { return m_size - m_used; }
    bool isExtended() const { return extendedMbrTypes.contains(static_cast<int>(m_mbrType)); }
    bool isOs() const { return !m_os.isEmpty(); }
    bool isMicrosoftReserved() const;
    bool isRecovery() const;
    bool isEfiSystem() const;
    bool isSystemRequired() const;

signals:
    void dataChanged();

protected:
    // Stores `value` into `field` and tells listeners, but only when it really changes.
    template <typename T>
    void update(T& field, const T& value)
    {
        if (field == value)
            return;
        field = value;
        emit dataChanged();
    }

    int m_id;
    QString m_letter;
    QString m_label;
    QString m_volumeName;
    QString m_fileSystem;
    Bytes m_size;
    Bytes m_used;
    Bytes m_offset;
    PartitionType m_type;
    quint32 m_mbrType;
    QString m_gptType;
    bool m_isLogical;
    QString m_os;
    bool m_isBootable;
};

} // namespace Velmora::System
