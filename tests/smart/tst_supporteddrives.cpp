#include "smart/SmartController.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"

#include <QTest>

#include <memory>

using Velmora::System::Drive;
using Velmora::System::SupportedDrive;
using Velmora::System::SupportedDrivesManager;

namespace {

std::unique_ptr<Drive> driveOf(const QString& model, const QString& firmware)
{
    return std::make_unique<Drive>(1, model, QStringLiteral("SERIAL1"), QString(), firmware, Velmora::System::Bytes(qint64(1) << 38),
        4, 4, true, QStringLiteral("SATA"));
}

// Entries are written "model|firmware|class".
QList<SupportedDrive> listOf(const QStringList& entries)
{
    QList<SupportedDrive> list;
    for (const QString& entry : entries) {
        const QStringList fields = entry.split(QLatin1Char('|'));
        list.append(SupportedDrive(fields.value(0), fields.value(1), fields.value(2)));
    }
    return list;
}

} // namespace

class TestSupportedDrives : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void cleanup() { SupportedDrivesManager::release(); }

    void matching_data();
    void matching();
    void controllerByClassLetter_data();
    void controllerByClassLetter();
};

void TestSupportedDrives::matching_data()
{
    QTest::addColumn<QStringList>("list");
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("firmware");
    QTest::addColumn<bool>("supported");
    QTest::addColumn<QString>("smartType");
    QTest::addColumn<QStringList>("infoLines");

    QTest::newRow("maker word, no list") << QStringList{} << "BRANTEL SSD S1" << "SB1" << true << "" << QStringList{};
    QTest::newRow("maker word split by a blank") << QStringList{} << "BRAN TEL SSD" << "SB1" << true << ""
                                                 << QStringList{};
    QTest::newRow("blanks removed on the drive's side") << QStringList{"SSDX|EDFM|C"} << "SSD X 240G" << "EDFM01"
                                                        << true << "C"
                                                        << QStringList{"Drive SSD X 240G is recognized as BRANTEL drive [SMART class C]"};
    QTest::newRow("case-insensitive") << QStringList{"ssdx|edfm|D"} << "SSD X 240G" << "EDFM01" << true << "D"
                                      << QStringList{"Drive SSD X 240G is recognized as BRANTEL drive [SMART class D]"};
    QTest::newRow("firmware must match too") << QStringList{"SSDX|S9FM|B"} << "SSD X" << "SAFM02" << false << ""
                                             << QStringList{};
    QTest::newRow("empty firmware matches every firmware") << QStringList{"SSDX||B"} << "SSD X" << "anything" << true
                                                           << "B"
                                                           << QStringList{"Drive SSD X is recognized as BRANTEL drive [SMART class B]"};
    QTest::newRow("list misses, maker word still counts") << QStringList{"SSDX|EDFM|C"} << "BRANTEL Y" << "1" << true
                                                          << "" << QStringList{};
}

void TestSupportedDrives::matching()
{
    QFETCH(QStringList, list);
    QFETCH(QString, model);
    QFETCH(QString, firmware);
    QFETCH(bool, supported);
    QFETCH(QString, smartType);
    QFETCH(QStringList, infoLines);

    SupportedDrivesManager::instance()->setSupportedDrives(listOf(list));
    auto drive = driveOf(model, firmware);
    LogCapture log;
    QCOMPARE(SupportedDrivesManager::isSupportedDrive(*drive), supported);
    QCOMPARE(log.messages(Velmora::Logger::Info), infoLines);
    QCOMPARE(SupportedDrivesManager::smartType(*drive), smartType);
}

void TestSupportedDrives::controllerByClassLetter_data()
{
    QTest::addColumn<QString>("smartType");
    QTest::addColumn<QString>("className");

    QTest::newRow("B") << "B" << "Velmora::Smart::MarvellSmartController";
    QTest::newRow("C") << "C" << "Velmora::Smart::SmiSmartController";
    QTest::newRow("lower-case d") << "d" << "Velmora::Smart::PhisonSmartController";
    QTest::newRow("unknown letter") << "A" << "Velmora::Smart::PhisonSmartController";
}

void TestSupportedDrives::controllerByClassLetter()
{
    QFETCH(QString, smartType);
    QFETCH(QString, className);

    SupportedDrivesManager::instance()->setSupportedDrives({SupportedDrive(QStringLiteral("SSDX"), QString(), smartType)});
    auto drive = driveOf(QStringLiteral("SSD X 480G"), QStringLiteral("SAFM01"));

    // The drive's constructor asked the factory; a second call gives the same choice.
    Velmora::Smart::SmartController* controller = drive->smartController();
    QVERIFY(controller);
    QCOMPARE(QString::fromLatin1(controller->metaObject()->className()), className);
    QCOMPARE(controller->parent(), drive.get());
    QCOMPARE(controller->firmwareVersion(), QStringLiteral("SAFM01"));

    std::unique_ptr<Velmora::Smart::SmartController> again(Velmora::Smart::createSmartController(drive.get()));
    QCOMPARE(QString::fromLatin1(again->metaObject()->className()), className);
}

KESTRAVIN_TEST_SUITE(TestSupportedDrives)
#include "tst_supporteddrives.moc"
