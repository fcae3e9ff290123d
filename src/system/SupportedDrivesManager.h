#pragma once

#include <QList>
#include <QObject>
#include <QString>

namespace Velmora::System {

class Drive;

// One line of the maker's list of supported drives: a model and firmware pattern and the SMART
// class those drives speak.
class SupportedDrive
{
public:
    SupportedDrive() = default;
    SupportedDrive(const QString& model, const QString& firmware, const QString& smartType)
        : m_model(model)
        , m_firmware(firmware)
        , m_smartType(smartType)
    {
    }

    QString model() const { return m_model; }
    QString firmware() const { return m_firmware; }
    QString smartType() const { return m_smartType; }

    bool operator==(const SupportedDrive& other) const
    {
        return m_model == other.m_model && m_firmware == other.m_firmware && m_smartType == other.m_smartType;
    }
    bool operator!=(const SupportedDrive& other) const { return !(*this == other); }

private:
    QString m_model;
    QString m_firmware;
    QString m_smartType;
};

// Decides which drives are the maker's own and which SMART dialect each speaks. The list holds no
// models of the program's own: it is filled from outside, and without it only the maker's word in
// the model name recognises a drive.
class SupportedDrivesManager : public QObject
{
    Q_OBJECT

public:
    static SupportedDrivesManager* instance();
    static void release();

    static bool isSupportedDrive(const Drive& drive);
    static QString smartType(const Drive& drive);

    QList<SupportedDrive> supportedDrives() const { return m_supportedDrives; }
    void setSupportedDrives(const QList<SupportedDrive>& drives) { m_supportedDrives = drives; }

private:
    explicit SupportedDrivesManager(QObject* parent = nullptr);

    // The entries that match a drive, in list order.
    QList<SupportedDrive> matches(const Drive& drive) const;

    QList<SupportedDrive> m_supportedDrives;

    static SupportedDrivesManager* s_instance;
};

} // namespace Velmora::System
