#pragma once

#include <QString>
#include <QStringList>

// A disk image attached to a loop device with its partitions mounted under a folder of the test.
// Whatever it attached or mounted, it unmounts and detaches again when it goes, in every outcome.
class LoopDisk
{
public:
    LoopDisk() = default;
    ~LoopDisk();
    LoopDisk(const LoopDisk&) = delete;
    LoopDisk& operator=(const LoopDisk&) = delete;

    // Why this machine cannot run the test (no root, no loop devices, a tool missing), or empty.
    static QString unavailableReason();

    // Each returns false and says why in error().
    bool partition(const QString& image, qint64 bytes, const QByteArray& sfdiskScript);
    bool attach(const QString& image);
    bool format(int partition, const QString& mkfs, const QStringList& arguments);
    bool mount(int partition, const QString& fileSystem, const QString& folder);

    QString device() const { return m_device; }
    QString partitionDevice(int partition) const { return m_device + QLatin1Char('p') + QString::number(partition); }
    QString error() const { return m_error; }

private:
    bool waitForPartitions() const;
    bool run(const QString& tool, const QStringList& arguments, const QByteArray& input, QByteArray* output = nullptr);

    QString m_device;
    bool m_addedPartitions = false;
    QStringList m_mounts;
    QString m_error;
};
