#pragma once

#include "SystemInfo.pb.h"

#include <QByteArray>
#include <QString>

// Builds the service's drive list messages for tests.
class SystemInfoBuilder
{
public:
    static constexpr quint64 MiB = 1ull << 20;
    static constexpr quint64 GiB = 1ull << 30;

    Velmora::Message::SystemInfo::DriveInfo& drive(quint32 id, const QString& model, const QString& serial,
        quint64 size, const QString& type = QStringLiteral("SATA"))
    {
        auto* d = m_info.add_drives();
        d->set_driveid(id);
        d->set_model(model.toStdString());
        d->set_serial(serial.toStdString());
        d->set_size(size);
        d->set_type(type.toStdString());
        d->set_firmwareversion("SB10");
        d->set_partitionformatstyle(Velmora::Message::SystemInfo::DriveInfo::GPT);
        d->set_satasupportedspeed(4);
        d->set_satacurrentspeed(4);
        return *d;
    }

    static Velmora::Message::PartitionInfo& partition(Velmora::Message::SystemInfo::DriveInfo& drive, quint32 id,
        quint64 offset, quint64 size, quint64 used, const QString& letter = QString())
    {
        auto* p = drive.add_partitions();
        p->set_id(id);
        p->set_offset(offset);
        p->set_size(size);
        p->set_used(used);
        p->set_type(Velmora::Message::PartitionInfo::GPT);
        p->set_letter(letter.toStdString());
        p->set_filesystem("NTFS");
        p->set_gpttype("ebd0a0a2-b9e5-4433-87c0-68b6b72699c7");
        return *p;
    }

    QByteArray payload() const
    {
        QByteArray bytes;
        bytes.resize(static_cast<int>(m_info.ByteSizeLong()));
        m_info.SerializeToArray(bytes.data(), bytes.size());
        return bytes;
    }

private:
    Velmora::Message::SystemInfo m_info;
};
