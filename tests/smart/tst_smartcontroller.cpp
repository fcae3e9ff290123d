#include "smart/MarvellSmartController.h"
#include "smart/MasSmartController.h"
#include "smart/PhisonSmartController.h"
#include "smart/SmartAttribute.h"
#include "smart/SmiSmartController.h"
#include "support/TestEnvironment.h"

#include "SmartTestData.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Velmora::Smart;

namespace {

// The families by their SMART class letter; "P" stands for the default family.
std::unique_ptr<SmartController> controllerOf(const QString& family, const QString& firmware = QString())
{
    if (family == QLatin1String("B"))
        return std::make_unique<MarvellSmartController>(firmware);
    if (family == QLatin1String("C"))
        return std::make_unique<SmiSmartController>(firmware);
    if (family == QLatin1String("D"))
        return std::make_unique<MasSmartController>(firmware);
    return std::make_unique<PhisonSmartController>(firmware);
}

void feed(SmartController& controller, const QStringList& texts)
{
    const auto list = SmartTestData::attributes(texts);
    for (const auto& attribute : list)
        controller.addAttribute(attribute);
}

const QStringList Families = {QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D"), QStringLiteral("P")};

} // namespace

class TestSmartController : public QObject
{
    Q_OBJECT

private slots:
    void attributeKeepsSixRawBytes_data();
    void attributeKeepsSixRawBytes();
    void attributeKeepsTheTableOrderOfTheMessageFields();
    void parameters_data();
    void parameters();
    void firmwareCorrections_data();
    void firmwareCorrections();
    void laterAttributeReplacesEarlierOne();
    void historyOnlyForWrittenData_data();
    void historyOnlyForWrittenData();
    void historyKeepsTheNewest400();
    void commitWithoutWrittenDataAddsZero();
};

void TestSmartController::attributeKeepsSixRawBytes_data()
{
    QTest::addColumn<QByteArray>("given");
    QTest::addColumn<QByteArray>("kept");
    QTest::addColumn<quint64>("raw48");

    QTest::newRow("empty") << QByteArray() << QByteArray::fromHex("000000000000") << quint64(0);
    QTest::newRow("short, high bytes zero") << QByteArray::fromHex("e803") << QByteArray::fromHex("e80300000000")
                                            << quint64(1000);
    QTest::newRow("exact") << QByteArray::fromHex("010203040506") << QByteArray::fromHex("010203040506")
                           << quint64(6618611909121);
    QTest::newRow("long, cut") << QByteArray::fromHex("01020304050607ff") << QByteArray::fromHex("010203040506")
                               << quint64(6618611909121);
}

void TestSmartController::attributeKeepsSixRawBytes()
{
    QFETCH(QByteArray, given);
    QFETCH(QByteArray, kept);
    QFETCH(quint64, raw48);

    const SmartAttribute attribute(9, 1, 2, 3, 4, given);
    QCOMPARE(attribute.data(), kept);
    QCOMPARE(attribute.raw48(), raw48);
    QVERIFY(attribute.name().isEmpty());
}

void TestSmartController::attributeKeepsTheTableOrderOfTheMessageFields()
{
    // Threshold comes before worst on the wire; mixing them up would be invisible in the values.
    PhisonSmartController controller(QStringLiteral("EDFM"));
    controller.addAttribute(SmartTestData::attribute(5, "0300", 100, 90, 10, 51));
    const SmartAttribute* stored = controller.attribute(5);
    QVERIFY(stored);
    QCOMPARE(stored->id(), 5u);
    QCOMPARE(stored->current(), 100u);
    QCOMPARE(stored->worst(), 90u);
    QCOMPARE(stored->threshold(), 10u);
    QCOMPARE(stored->status(), 51u);
    QCOMPARE(stored->data(), QByteArray::fromHex("030000000000"));
    QVERIFY(!controller.attribute(6));
}

void TestSmartController::parameters_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<QStringList>("attributes");
    QTest::addColumn<int>("parameter");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("ok");

    // Every attribute any family reads, with a value that says which one was read.
    const QStringList everything = {"5:0100", "9:0200", "12:0300", "194:2a01", "165:0400", "167:0500", "169:0600",
        "173:07000800", "207:0900", "208:0a00", "231:0b", "241:400000000000"};

    for (const QString& family : Families) {
        const QByteArray f = family.toLatin1();
        QTest::addRow("%s bad sectors raw48", f.data())
            << family << QStringList{"5:010203040506"} << int(BadSectors) << 6618611909121.0 << true;
        QTest::addRow("%s power-on hours", f.data())
            << family << QStringList{"9:e80300000000"} << int(PowerOnHours) << 1000.0 << true;
        QTest::addRow("%s power cycles", f.data())
            << family << QStringList{"12:0a0000000000"} << int(PowerCycles) << 10.0 << true;
        QTest::addRow("%s temperature is byte 0 alone", f.data())
            << family << QStringList{"194:2301ff000000"} << int(Temperature) << 35.0 << true;
        QTest::addRow("%s parameter 8", f.data()) << family << everything << 8 << 0.0 << false;
        for (int parameter = BadSectors; parameter <= GBWritten; ++parameter) {
            QTest::addRow("%s parameter %d without attributes", f.data(), parameter)
                << family << QStringList{} << parameter << 0.0 << false;
        }
    }

    // Class "D"
    QTest::newRow("D max erase 207 raw32") << "D" << QStringList{"207:e8030000ffff"} << int(MaxEraseCount) << 1000.0 << true;
    QTest::newRow("D avg erase 208 raw32") << "D" << QStringList{"208:4605"} << int(AvgEraseCount) << 1350.0 << true;
    QTest::newRow("D erase counts are not 165/167") << "D" << QStringList{"165:01", "167:02"} << int(MaxEraseCount) << 0.0 << false;
    QTest::newRow("D life 231 is used up, 130") << "D" << QStringList{"231:82"} << int(LifeRemaining) << 0.0 << true;
    QTest::newRow("D life 231 is used up, 5") << "D" << QStringList{"231:05"} << int(LifeRemaining) << 95.0 << true;
    QTest::newRow("D life 231 of 0 wins over 208") << "D" << QStringList{"231:00", "208:4605"} << int(LifeRemaining) << 100.0 << true;
    QTest::newRow("D life from 208 at 1350") << "D" << QStringList{"208:4605"} << int(LifeRemaining) << 50.0 << true;
    QTest::newRow("D life from 208 at 3000 clamps") << "D" << QStringList{"208:b80b"} << int(LifeRemaining) << 0.0 << true;
    QTest::newRow("D life from 208 at 0") << "D" << QStringList{"208:00"} << int(LifeRemaining) << 100.0 << true;
    QTest::newRow("D life without 231 and 208") << "D" << QStringList{"207:4605"} << int(LifeRemaining) << 0.0 << false;
    QTest::newRow("D written 241 raw48") << "D" << QStringList{"241:400000000000"} << int(GBWritten) << 64.0 << true;

    // Class "C"
    QTest::newRow("C max erase 165 raw32") << "C" << QStringList{"165:e8030000ffff"} << int(MaxEraseCount) << 1000.0 << true;
    QTest::newRow("C avg erase 167 raw32") << "C" << QStringList{"167:4605"} << int(AvgEraseCount) << 1350.0 << true;
    QTest::newRow("C life 169 is left, 55") << "C" << QStringList{"169:37"} << int(LifeRemaining) << 55.0 << true;
    QTest::newRow("C life 169 capped at 100") << "C" << QStringList{"169:82"} << int(LifeRemaining) << 100.0 << true;
    QTest::newRow("C life ignores 231") << "C" << QStringList{"231:37"} << int(LifeRemaining) << 0.0 << false;
    QTest::newRow("C written in 32 MiB units") << "C" << QStringList{"241:400000000000"} << int(GBWritten) << 2.0 << true;
    QTest::newRow("C written, all 48 bits") << "C" << QStringList{"241:ffffffffffff"} << int(GBWritten) << 8796093022207.0 << true;

    // Class "B"
    QTest::newRow("B max erase 165 raw32") << "B" << QStringList{"165:e8030000ffff"} << int(MaxEraseCount) << 1000.0 << true;
    QTest::newRow("B avg erase 167 raw32") << "B" << QStringList{"167:4605"} << int(AvgEraseCount) << 1350.0 << true;
    QTest::newRow("B life at 2699 rounds to 0") << "B" << QStringList{"167:8b0a"} << int(LifeRemaining) << 0.0 << true;
    QTest::newRow("B life at 2673") << "B" << QStringList{"167:710a"} << int(LifeRemaining) << 1.0 << true;
    QTest::newRow("B life at 1350") << "B" << QStringList{"167:4605"} << int(LifeRemaining) << 50.0 << true;
    QTest::newRow("B life at 3000 clamps") << "B" << QStringList{"167:b80b"} << int(LifeRemaining) << 0.0 << true;
    QTest::newRow("B life at 0") << "B" << QStringList{"167:00"} << int(LifeRemaining) << 100.0 << true;
    QTest::newRow("B life ignores 231") << "B" << QStringList{"231:10"} << int(LifeRemaining) << 0.0 << false;
    QTest::newRow("B written 241 raw48") << "B" << QStringList{"241:400000000000"} << int(GBWritten) << 64.0 << true;

    // Default family
    QTest::newRow("P max erase is low half of 173") << "P" << QStringList{"173:0a001400"} << int(MaxEraseCount) << 10.0 << true;
    QTest::newRow("P avg erase is high half of 173") << "P" << QStringList{"173:0a001400"} << int(AvgEraseCount) << 20.0 << true;
    QTest::newRow("P life 231 is left, 130") << "P" << QStringList{"231:82"} << int(LifeRemaining) << 100.0 << true;
    QTest::newRow("P life 231 is left, 55") << "P" << QStringList{"231:37"} << int(LifeRemaining) << 55.0 << true;
    QTest::newRow("P written 241 raw48") << "P" << QStringList{"241:400000000000"} << int(GBWritten) << 64.0 << true;

    // With every attribute present, each family picks its own.
    const QList<QPair<QString, QList<double>>> picks = {
        {"B", {4, 5, 100, 64}},
        {"C", {4, 5, 6, 2}},
        {"D", {9, 10, 89, 64}},
        {"P", {7, 8, 11, 64}},
    };
    for (const auto& pick : picks) {
        const QByteArray f = pick.first.toLatin1();
        const QList<int> asked = {MaxEraseCount, AvgEraseCount, LifeRemaining, GBWritten};
        for (int i = 0; i < asked.size(); ++i) {
            QTest::addRow("%s picks its attribute for parameter %d", f.data(), asked.at(i))
                << pick.first << everything << asked.at(i) << pick.second.at(i) << true;
        }
    }
}

void TestSmartController::parameters()
{
    QFETCH(QString, family);
    QFETCH(QStringList, attributes);
    QFETCH(int, parameter);
    QFETCH(double, value);
    QFETCH(bool, ok);

    auto controller = controllerOf(family, QStringLiteral("EDFM01"));
    feed(*controller, attributes);
    bool valid = !ok;
    QCOMPARE(controller->parameterValue(SmartParameter(parameter), &valid), value);
    QCOMPARE(valid, ok);
    // A null flag is allowed and changes nothing.
    QCOMPARE(controller->parameterValue(SmartParameter(parameter), nullptr), value);
}

void TestSmartController::firmwareCorrections_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("firmware");
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<int>("parameter");
    QTest::addColumn<double>("value");

    QTest::newRow("SA temperature is 30") << "P" << "SAFM01" << "194:2d01ff000000"
                                          << QByteArray::fromHex("1e0000000000") << int(Temperature) << 30.0;
    QTest::newRow("SB temperature is 30") << "P" << "SB1" << "194:2d" << QByteArray::fromHex("1e0000000000")
                                          << int(Temperature) << 30.0;
    QTest::newRow("SA prefix is case-sensitive") << "P" << "saFM01" << "194:2d" << QByteArray::fromHex("2d0000000000")
                                                 << int(Temperature) << 45.0;
    QTest::newRow("SA must be a prefix") << "P" << "XSA1" << "194:2d" << QByteArray::fromHex("2d0000000000")
                                         << int(Temperature) << 45.0;
    QTest::newRow("S9 leaves temperature") << "P" << "S9FM" << "194:2d" << QByteArray::fromHex("2d0000000000")
                                           << int(Temperature) << 45.0;
    QTest::newRow("S9 erase counts swapped, max") << "P" << "S9FM02" << "173:0a001400"
                                                  << QByteArray::fromHex("14000a000000") << int(MaxEraseCount) << 20.0;
    QTest::newRow("S9 erase counts swapped, avg") << "P" << "S9FM02" << "173:0a001400"
                                                  << QByteArray::fromHex("14000a000000") << int(AvgEraseCount) << 10.0;
    QTest::newRow("S9 erase counts, short raw value") << "P" << "S9" << "173:0a00"
                                                      << QByteArray::fromHex("00000a000000") << int(AvgEraseCount) << 10.0;
    QTest::newRow("SA leaves erase counts") << "P" << "SAFM" << "173:0a001400"
                                            << QByteArray::fromHex("0a0014000000") << int(MaxEraseCount) << 10.0;
    QTest::newRow("S9 written divided by 1000") << "P" << "S9FM02" << "241:6f1700000000"
                                                << QByteArray::fromHex("050000000000") << int(GBWritten) << 5.0;
    QTest::newRow("S9 written, two bytes") << "P" << "S9" << "241:6f17" << QByteArray::fromHex("050000000000")
                                           << int(GBWritten) << 5.0;
    QTest::newRow("S9 written, one byte counts as 0") << "P" << "S9" << "241:ff" << QByteArray::fromHex("000000000000")
                                                      << int(GBWritten) << 0.0;
    QTest::newRow("S9 written, all 48 bits") << "P" << "S9" << "241:ffffffffffff"
                                             << QByteArray::fromHex("c64b37894100") << int(GBWritten) << 281474976710.0;
    QTest::newRow("SB leaves written data") << "P" << "SB" << "241:6f1700000000" << QByteArray::fromHex("6f1700000000")
                                            << int(GBWritten) << 5999.0;
    QTest::newRow("S9 leaves life") << "P" << "S9" << "231:5a" << QByteArray::fromHex("5a0000000000")
                                    << int(LifeRemaining) << 90.0;
    QTest::newRow("other families do not correct, B") << "B" << "SA1" << "194:2d" << QByteArray::fromHex("2d0000000000")
                                                      << int(Temperature) << 45.0;
    QTest::newRow("other families do not correct, C") << "C" << "S9" << "241:6f1700000000"
                                                      << QByteArray::fromHex("6f1700000000") << int(GBWritten) << 187.0;
    QTest::newRow("other families do not correct, D") << "D" << "S9" << "241:6f1700000000"
                                                      << QByteArray::fromHex("6f1700000000") << int(GBWritten) << 5999.0;
}

void TestSmartController::firmwareCorrections()
{
    QFETCH(QString, family);
    QFETCH(QString, firmware);
    QFETCH(QString, attribute);
    QFETCH(QByteArray, stored);
    QFETCH(int, parameter);
    QFETCH(double, value);

    auto controller = controllerOf(family, firmware);
    feed(*controller, {attribute});
    const SmartAttribute* kept = controller->attribute(attribute.section(QLatin1Char(':'), 0, 0).toUInt());
    QVERIFY(kept);
    QCOMPARE(kept->data().toHex(), stored.toHex());
    bool ok = false;
    QCOMPARE(controller->parameterValue(SmartParameter(parameter), &ok), value);
    QVERIFY(ok);
}

void TestSmartController::laterAttributeReplacesEarlierOne()
{
    // The drive's firmware may change under the controller (a firmware update while running).
    PhisonSmartController controller(QStringLiteral("EDFM"));
    feed(controller, {"194:2d", "9:e803"});
    controller.setFirmwareVersion(QStringLiteral("SA01"));
    controller.addAttribute(SmartTestData::attribute(194, "28", 77));

    bool ok = false;
    QCOMPARE(controller.parameterValue(Temperature, &ok), 30.0);
    QCOMPARE(controller.attribute(194)->current(), 77u);
    // An attribute that the later read-out did not carry keeps its old value.
    QCOMPARE(controller.parameterValue(PowerOnHours, &ok), 1000.0);
    QVERIFY(ok);
}

void TestSmartController::historyOnlyForWrittenData_data()
{
    QTest::addColumn<QString>("family");
    for (const QString& family : Families)
        QTest::newRow(family.toLatin1()) << family;
}

void TestSmartController::historyOnlyForWrittenData()
{
    QFETCH(QString, family);
    auto controller = controllerOf(family);
    for (int parameter = BadSectors; parameter < GBWritten; ++parameter)
        QVERIFY2(!controller->parameterHistory(SmartParameter(parameter)), qPrintable(QString::number(parameter)));
    QList<SmartHistoryPoint*>* history = controller->parameterHistory(GBWritten);
    QVERIFY(history);
    QVERIFY(history->isEmpty());

    feed(*controller, {"241:400000000000"});
    QSignalSpy changed(controller.get(), &SmartController::dataChanged);
    const QDateTime before = QDateTime::currentDateTime();
    controller->commitReadout();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(controller->parameterHistory(GBWritten), history);
    QCOMPARE(history->size(), 1);
    QCOMPARE(history->first()->value, controller->parameterValue(GBWritten, nullptr));
    QVERIFY(history->first()->time >= before);
    QVERIFY(history->first()->time <= QDateTime::currentDateTime());
}

void TestSmartController::historyKeepsTheNewest400()
{
    MasSmartController controller(QStringLiteral("EDFM"));
    QSignalSpy changed(&controller, &SmartController::dataChanged);
    for (int commit = 1; commit <= 401; ++commit) {
        controller.addAttribute(SmartTestData::attribute(241, SmartTestData::rawHex(quint64(commit))));
        controller.commitReadout();
    }
    QCOMPARE(changed.count(), 401);
    const QList<SmartHistoryPoint*>& history = *controller.parameterHistory(GBWritten);
    QCOMPARE(history.size(), 400);
    QCOMPARE(history.first()->value, 401.0);
    QCOMPARE(history.last()->value, 2.0);
    for (int i = 1; i < history.size(); ++i)
        QVERIFY(history.at(i - 1)->value > history.at(i)->value);
}

void TestSmartController::commitWithoutWrittenDataAddsZero()
{
    SmiSmartController controller(QStringLiteral("EDFM"));
    feed(controller, {"9:e803"});
    controller.commitReadout();
    bool ok = true;
    QCOMPARE(controller.parameterValue(GBWritten, &ok), 0.0);
    QVERIFY(!ok);
    QCOMPARE(controller.parameterHistory(GBWritten)->size(), 1);
    QCOMPARE(controller.parameterHistory(GBWritten)->first()->value, 0.0);
}

KESTRAVIN_TEST_MAIN(TestSmartController)
#include "tst_smartcontroller.moc"
