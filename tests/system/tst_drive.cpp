#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/Partition.h"
#include "system/System.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace Velmora::System;

namespace {

constexpr qint64 MiB = 1 << 20;
constexpr qint64 GiB = qint64(1) << 30;

struct Span {
    qint64 offset;
    qint64 size;
};

Partition* partition(int id, qint64 offset, qint64 size, const QString& letter = QString(), quint32 mbrType = 7,
    qint64 used = 0)
{
    return new Partition(id, letter, QString(), Bytes(size), Bytes(used), Bytes(offset), Partition::MBR, mbrType,
        QString(), QString(), QStringLiteral("NTFS"), false, false);
}

Drive* drive(qint64 capacity, const QString& model = QStringLiteral("BRANTEL SSD S1"), int id = 1)
{
    return new Drive(id, model, QStringLiteral("SERIAL1"), QString(), QStringLiteral("SB1"), Bytes(capacity), 4, 4,
        true, QStringLiteral("SATA"));
}

// The unused-space entries as (id, offset, size), in the drive's key order.
QList<QList<qint64>> unusedSpace(const Drive& d)
{
    QList<QList<qint64>> spans;
    for (const Partition* p : d.partitions()) {
        if (p->type() == Partition::UnusedSpace)
            spans.append({p->id(), p->offset().value(), p->size().value()});
    }
    return spans;
}

} // namespace

Q_DECLARE_METATYPE(QList<Span>)

class TestDrive : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void carvesUnusedSpace_data();
    void carvesUnusedSpace();
    void announcesNewGapsAndPartitions();
    void refusesUnusedSpaceFromOutside();
    void normalisesSerials_data();
    void normalisesSerials();
    void dropsDeviceWordsFromTheModel_data();
    void dropsDeviceWordsFromTheModel();
    void listsLettersInItsDisplayText();
    void leavesExtendedPartitionsOutOfUsedSpace();
    void recognisesSystemPartitions_data();
    void recognisesSystemPartitions();
    void keepsRemovedDrivesAlive();
    void movesCurrentDriveOnRemoval();
};

void TestDrive::carvesUnusedSpace_data()
{
    QTest::addColumn<qint64>("capacity");
    QTest::addColumn<QList<Span>>("partitions");
    QTest::addColumn<QList<QList<qint64>>>("expected");

    const qint64 capacity = 100 * GiB;
    QTest::newRow("new drive is one stretch") << capacity << QList<Span>{}
                                              << QList<QList<qint64>>{{-1, 0, capacity}};
    QTest::newRow("head gap of 1 MB is not shown") << capacity << QList<Span>{{MiB, 10 * GiB}}
                                                   << QList<QList<qint64>>{{-1, MiB + 10 * GiB, capacity - 10 * GiB}};
    QTest::newRow("tail within 10 MB is not shown") << capacity << QList<Span>{{MiB, capacity - 10 * MiB}}
                                                    << QList<QList<qint64>>{};
    QTest::newRow("tail just over 10 MB stays") << capacity << QList<Span>{{MiB, capacity - 10 * MiB - 1}}
                                                << QList<QList<qint64>>{{-1, capacity - 9 * MiB - 1, 10 * MiB + 1}};
    QTest::newRow("gap between two partitions")
        << capacity << QList<Span>{{MiB, 10 * GiB}, {20 * GiB, 30 * GiB}}
        << QList<QList<qint64>>{{-2, 50 * GiB, 50 * GiB + MiB}, {-1, MiB + 10 * GiB, 20 * GiB - MiB - 10 * GiB}};
    QTest::newRow("partition ending at the stretch's end leaves no entry behind")
        << capacity << QList<Span>{{MiB, 10 * GiB}, {90 * GiB + MiB, 10 * GiB}}
        << QList<QList<qint64>>{{-1, MiB + 10 * GiB, 80 * GiB}};
}

void TestDrive::carvesUnusedSpace()
{
    QFETCH(qint64, capacity);
    QFETCH(QList<Span>, partitions);
    QFETCH(QList<QList<qint64>>, expected);

    QScopedPointer<Drive> d(drive(capacity));
    int id = 1;
    for (const Span& span : partitions)
        d->addPartition(partition(id++, span.offset, span.size));
    QCOMPARE(unusedSpace(*d), expected);
}

void TestDrive::announcesNewGapsAndPartitions()
{
    QScopedPointer<Drive> d(drive(100 * GiB));
    d->addPartition(partition(1, MiB, 10 * GiB));
    QSignalSpy added(d.data(), &Drive::partitionAdded);
    QSignalSpy changed(d.data(), &Drive::dataChanged);
    d->addPartition(partition(2, 20 * GiB, 30 * GiB));
    QCOMPARE(added.count(), 2);
    QCOMPARE(added.at(0).at(0).toInt(), -2);
    QCOMPARE(added.at(1).at(0).toInt(), 2);
    QCOMPARE(changed.count(), 1);

    QSignalSpy removed(d.data(), &Drive::partitionRemoved);
    d->removePartition(2);
    QCOMPARE(removed.count(), 1);
    QCOMPARE(changed.count(), 2);
    QVERIFY(!d->hasPartition(2));
}

void TestDrive::refusesUnusedSpaceFromOutside()
{
    QScopedPointer<Drive> d(drive(100 * GiB));
    auto* gap = new Partition(-5, QString(), QString(), Bytes(MiB), Bytes(0), Bytes(0), Partition::UnusedSpace, 7,
        QString(), QString(), QString(), false, false);
    d->addPartition(gap);
    QVERIFY(!d->hasPartition(-5));
    delete gap;
}

void TestDrive::normalisesSerials_data()
{
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("serial");
    const QString hexOfText = QString::fromLatin1(QByteArray("S3Z8NB0K123456A-    ").toHex());
    QTest::newRow("plain serial, trimmed") << "  S3Z8NB0K123456A  " << "S3Z8NB0K123456A";
    QTest::newRow("40 hex digits of letters and digits") << hexOfText << "S3Z8NB0K123456A-";
    const QString zeroPadded = QString::fromLatin1(QByteArray("ABCD").toHex() + QByteArray(32, '0'));
    QTest::newRow("zero bytes are no serial characters") << zeroPadded << zeroPadded;
    QTest::newRow("40 characters that are not hexadecimal") << QString(40, QLatin1Char('Z')) << QString(40, QLatin1Char('Z'));
    QTest::newRow("hex of a control character stays")
        << QString::fromLatin1(QByteArray("\x01" "BCDEFGHIJKLMNOPQRST").toHex())
        << QString::fromLatin1(QByteArray("\x01" "BCDEFGHIJKLMNOPQRST").toHex());
    QTest::newRow("39 hex digits stay") << QString(39, QLatin1Char('4')) << QString(39, QLatin1Char('4'));
}

void TestDrive::normalisesSerials()
{
    QFETCH(QString, reported);
    QFETCH(QString, serial);
    QCOMPARE(Drive::normalizedSerial(reported), serial);
}

void TestDrive::dropsDeviceWordsFromTheModel_data()
{
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("model");
    QTest::newRow("SCSI disk device") << "BRANTEL SSD S1 SCSI Disk Device" << "BRANTEL SSD S1";
    QTest::newRow("NVMe prefix") << "NVMe BRANTEL N1" << "BRANTEL N1";
    QTest::newRow("USB device") << "Stick Pro USB Device" << "Stick Pro";
    QTest::newRow("case-sensitive") << "Disk scsi disk device" << "Disk scsi disk device";
}

void TestDrive::dropsDeviceWordsFromTheModel()
{
    QFETCH(QString, reported);
    QFETCH(QString, model);
    QScopedPointer<Drive> d(drive(GiB, reported));
    QCOMPARE(d->model(), model);
}

void TestDrive::listsLettersInItsDisplayText()
{
    QScopedPointer<Drive> d(drive(240057409536, QStringLiteral("SSD X")));
    QCOMPARE(d->displayText(true), QStringLiteral("SSD X [223.57 GB]"));
    d->addPartition(partition(3, 100 * GiB, 10 * GiB, QStringLiteral("D:\\")));
    d->addPartition(partition(2, MiB, 10 * GiB, QStringLiteral("C:")));
    d->addPartition(partition(1, 50 * GiB, 10 * GiB));
    QCOMPARE(d->displayText(true), QStringLiteral("SSD X [223.57 GB] (C:, D:)"));
    QCOMPARE(d->displayText(false), QStringLiteral("SSD X (C:, D:)"));
}

void TestDrive::leavesExtendedPartitionsOutOfUsedSpace()
{
    QScopedPointer<Drive> d(drive(100 * GiB));
    d->addPartition(partition(1, MiB, 10 * GiB, QString(), 7, 4 * GiB));
    d->addPartition(partition(2, 11 * GiB, 50 * GiB, QString(), 0x0F, 20 * GiB));
    d->addPartition(partition(3, 12 * GiB, 10 * GiB, QString(), 7, 6 * GiB));
    QCOMPARE(d->used().value(), 10 * GiB);
    QCOMPARE(d->free().value(), 90 * GiB);
    QCOMPARE(d->usedPercent(), 10.0);
}

void TestDrive::recognisesSystemPartitions_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("gptType");
    QTest::addColumn<QString>("letter");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("volumeName");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<bool>("bootable");
    QTest::addColumn<QString>("kind");

    const QString vol = QStringLiteral("\\\\?\\Volume{1}");
    QTest::newRow("GPT EFI, upper case") << int(Partition::GPT) << "C12A7328-F81F-11D2-BA4B-00A0C93EC93B" << "" << ""
                                         << vol << 100 * MiB << false << "efi";
    QTest::newRow("GPT reserved") << int(Partition::GPT) << "e3c9e316-0b5c-4db8-817d-f92df00215ae" << "" << "" << ""
                                  << 16 * MiB << false << "msr";
    QTest::newRow("GPT recovery") << int(Partition::GPT) << "de94bba4-06d1-4d40-a16a-bfd50179d6ac" << "" << "" << vol
                                  << 500 * MiB << false << "recovery";
    QTest::newRow("GPT data") << int(Partition::GPT) << "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7" << "C:" << "" << vol
                              << 100 * GiB << false << "";
    QTest::newRow("MBR bootable without letter") << int(Partition::MBR) << "" << "" << "System" << vol << 500 * MiB
                                                 << true << "efi";
    QTest::newRow("MBR 128 MB without volume") << int(Partition::MBR) << "" << "" << "" << "" << 128 * MiB << false << "msr";
    QTest::newRow("MBR 128 MB with a volume") << int(Partition::MBR) << "" << "" << "" << vol << 128 * MiB << false << "";
    QTest::newRow("MBR recovery label") << int(Partition::MBR) << "" << "" << "My RECOVERY" << vol << GiB << false
                                        << "recovery";
    QTest::newRow("MBR recovery label with letter") << int(Partition::MBR) << "" << "E:" << "Recovery" << vol << GiB
                                                    << false << "";
    QTest::newRow("RAW") << int(Partition::RAW) << "c12a7328-f81f-11d2-ba4b-00a0c93ec93b" << "" << "Recovery" << ""
                         << 16 * MiB << true << "";
}

void TestDrive::recognisesSystemPartitions()
{
    QFETCH(int, type);
    QFETCH(QString, gptType);
    QFETCH(QString, letter);
    QFETCH(QString, label);
    QFETCH(QString, volumeName);
    QFETCH(qint64, size);
    QFETCH(bool, bootable);
    QFETCH(QString, kind);

    Partition p(1, letter, label, Bytes(size), Bytes(0), Bytes(MiB), static_cast<Partition::PartitionType>(type), 7,
        gptType, volumeName, QStringLiteral("NTFS"), bootable, false);
    QCOMPARE(p.isEfiSystem(), kind == QLatin1String("efi"));
    QCOMPARE(p.isMicrosoftReserved(), kind == QLatin1String("msr"));
    QCOMPARE(p.isRecovery(), kind == QLatin1String("recovery"));
    QCOMPARE(p.isSystemRequired(), !kind.isEmpty());
}

void TestDrive::keepsRemovedDrivesAlive()
{
    System system;
    Drive* d = drive(GiB);
    system.addDrive(d);
    QPointer<Drive> watch(d);
    LogCapture log;
    system.removeDrive(1);
    system.removeDrive(1);
    QVERIFY(!watch.isNull());
    QCOMPARE(watch->parent(), &system);
    QCOMPARE(log.count(QStringLiteral("Attempt to remove unexisting drive (id: 1)].")), 1);
}

void TestDrive::movesCurrentDriveOnRemoval()
{
    System system;
    system.addDrive(drive(GiB, QStringLiteral("A"), 3));
    system.addDrive(drive(GiB, QStringLiteral("B"), 5));
    system.addDrive(drive(GiB, QStringLiteral("C"), 7));
    QSignalSpy current(&system, &System::currentDriveChanged);
    system.setCurrentDrive(5);
    system.setCurrentDrive(5);
    system.setCurrentDrive(42);
    QCOMPARE(current.count(), 1);
    QCOMPARE(system.currentDriveId(), 5);

    LogCapture log;
    system.removeDrive(5);
    QCOMPARE(system.currentDriveId(), 3);
    system.removeDrive(7);
    system.removeDrive(3);
    QCOMPARE(log.count(QStringLiteral("Last drive removed from system.")), 1);
    QCOMPARE(system.currentDrive(), nullptr);
}

KESTRAVIN_TEST_MAIN(TestDrive)
#include "tst_drive.moc"
