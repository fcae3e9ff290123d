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
    void normalisesSerials_data();
    void normalisesSerials();
    void recognisesSystemPartitions_data();
    void recognisesSystemPartitions();
    void movesCurrentDriveOnRemoval();
};

void TestDrive::carvesUnusedSpace_data()
{
    QTest::addColumn<qint64>("capacity");
    QTest::addColumn<QList<Span>>("partitions");
    QTest::addColumn<QList<QList<qint64>>>("expected");

    const qint64 capacity = 100 * GiB;
    QTest::newRow("tail within 10 MB is not shown") << capacity << QList<Span>{{MiB, capacity - 10 * MiB}}
                                                    << QList<QList<qint64>>{};
    QTest::newRow("tail just over 10 MB stays") << capacity << QList<Span>{{MiB, capacity - 10 * MiB - 1}}
                                                << QList<QList<qint64>>{{-1, capacity - 9 * MiB - 1, 10 * MiB + 1}};
    QTest::newRow("gap between two partitions")
        << capacity << QList<Span>{{MiB, 10 * GiB}, {20 * GiB, 30 * GiB}}
        << QList<QList<qint64>>{{-2, 50 * GiB, 50 * GiB + MiB}, {-1, MiB + 10 * GiB, 20 * GiB - MiB - 10 * GiB}};
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

void TestDrive::normalisesSerials_data()
{
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("serial");
    const QString hexOfText = QString::fromLatin1(QByteArray("S3Z8NB0K123456A-    ").toHex());
    QTest::newRow("40 hex digits of letters and digits") << hexOfText << "S3Z8NB0K123456A-";
    QTest::newRow("40 characters that are not hexadecimal") << QString(40, QLatin1Char('Z')) << QString(40, QLatin1Char('Z'));
    QTest::newRow("39 hex digits stay") << QString(39, QLatin1Char('4')) << QString(39, QLatin1Char('4'));
}

void TestDrive::normalisesSerials()
{
    QFETCH(QString, reported);
    QFETCH(QString, serial);
    QCOMPARE(Drive::normalizedSerial(reported), serial);
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
    QTest::newRow("GPT recovery") << int(Partition::GPT) << "de94bba4-06d1-4d40-a16a-bfd50179d6ac" << "" << "" << vol
                                  << 500 * MiB << false << "recovery";
    QTest::newRow("MBR bootable without letter") << int(Partition::MBR) << "" << "" << "System" << vol << 500 * MiB
                                                 << true << "efi";
    QTest::newRow("MBR 128 MB without volume") << int(Partition::MBR) << "" << "" << "" << "" << 128 * MiB << false << "msr";
    QTest::newRow("MBR recovery label") << int(Partition::MBR) << "" << "" << "My RECOVERY" << vol << GiB << false
                                        << "recovery";
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

KESTRAVIN_TEST_SUITE(TestDrive)
#include "tst_drive.moc"
