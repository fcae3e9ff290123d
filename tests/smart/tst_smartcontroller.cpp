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

} // namespace

class TestSmartController : public QObject
{
    Q_OBJECT

private slots:
    void parameters_data();
    void parameters();
    void firmwareCorrections_data();
    void firmwareCorrections();
    void historyKeepsTheNewest400();
};

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

    QTest::newRow("temperature is byte 0 alone") << "P" << QStringList{"194:2301ff000000"} << int(Temperature) << 35.0
                                                 << true;
    QTest::newRow("parameter without attributes") << "B" << QStringList{} << int(PowerOnHours) << 0.0 << false;
    QTest::newRow("D life 231 is used up, 130") << "D" << QStringList{"231:82"} << int(LifeRemaining) << 0.0 << true;
    QTest::newRow("D life from 208 at 3000 clamps") << "D" << QStringList{"208:b80b"} << int(LifeRemaining) << 0.0 << true;

    QTest::newRow("C life 169 capped at 100") << "C" << QStringList{"169:82"} << int(LifeRemaining) << 100.0 << true;
    QTest::newRow("C written in 32 MiB units") << "C" << QStringList{"241:400000000000"} << int(GBWritten) << 2.0 << true;

    QTest::newRow("B life at 2699 rounds to 0") << "B" << QStringList{"167:8b0a"} << int(LifeRemaining) << 0.0 << true;
    QTest::newRow("B life at 2673") << "B" << QStringList{"167:710a"} << int(LifeRemaining) << 1.0 << true;

    QTest::newRow("P life 231 is left, 130") << "P" << QStringList{"231:82"} << int(LifeRemaining) << 100.0 << true;

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
    QTest::newRow("SA prefix is case-sensitive") << "P" << "saFM01" << "194:2d" << QByteArray::fromHex("2d0000000000")
                                                 << int(Temperature) << 45.0;
    QTest::newRow("S9 erase counts swapped, max") << "P" << "S9FM02" << "173:0a001400"
                                                  << QByteArray::fromHex("14000a000000") << int(MaxEraseCount) << 20.0;
    QTest::newRow("S9 written divided by 1000, all 48 bits") << "P" << "S9" << "241:ffffffffffff"
                                                             << QByteArray::fromHex("c64b37894100") << int(GBWritten)
                                                             << 281474976710.0;
    QTest::newRow("S9 written, two bytes") << "P" << "S9" << "241:6f17" << QByteArray::fromHex("050000000000")
                                           << int(GBWritten) << 5.0;
    QTest::newRow("S9 written, one byte counts as 0") << "P" << "S9" << "241:ff" << QByteArray::fromHex("000000000000")
                                                      << int(GBWritten) << 0.0;
    QTest::newRow("other families do not correct, C") << "C" << "S9" << "241:6f1700000000"
                                                      << QByteArray::fromHex("6f1700000000") << int(GBWritten) << 187.0;
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

KESTRAVIN_TEST_SUITE(TestSmartController)
#include "tst_smartcontroller.moc"
