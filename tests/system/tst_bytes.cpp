#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Bytes.h"

#include <QTest>

using Velmora::System::Bytes;

class TestBytes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { Velmora::Logger::setConsoleEnabled(false); }
    void choosesTheUnitBelowAThousand_data();
    void choosesTheUnitBelowAThousand();
    void subtractsDownToZero_data();
    void subtractsDownToZero();
    void parsesText_data();
    void parsesText();
    void roundsUpToWholeUnits_data();
    void roundsUpToWholeUnits();
    void multipliesToTheNearestByte_data();
    void multipliesToTheNearestByte();
    void convertsAmountsOfAUnit();
};

void TestBytes::choosesTheUnitBelowAThousand_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << qint64(0) << "0.00 B";
    QTest::newRow("999 bytes") << qint64(999) << "999.00 B";
    QTest::newRow("1000 bytes") << qint64(1000) << "0.98 KB";
    QTest::newRow("1024000 bytes") << qint64(1024000) << "0.98 MB";
    QTest::newRow("a 240 GB drive") << qint64(240057409536) << "223.57 GB";
    QTest::newRow("2 TiB") << (qint64(2) << 40) << "2.00 TB";
    QTest::newRow("1000 PiB reads in EB") << qint64(1000) * (qint64(1) << 50) << "0.98 EB";
}

void TestBytes::choosesTheUnitBelowAThousand()
{
    QFETCH(qint64, bytes);
    QFETCH(QString, text);
    QCOMPARE(Bytes(bytes).toString(), text);
}

void TestBytes::subtractsDownToZero_data()
{
    QTest::addColumn<qint64>("a");
    QTest::addColumn<qint64>("b");
    QTest::addColumn<qint64>("difference");
    QTest::newRow("5 - 7") << qint64(5) << qint64(7) << qint64(0);
    QTest::newRow("7 - 5") << qint64(7) << qint64(5) << qint64(2);
    QTest::newRow("equal") << qint64(1 << 20) << qint64(1 << 20) << qint64(0);
}

void TestBytes::subtractsDownToZero()
{
    QFETCH(qint64, a);
    QFETCH(qint64, b);
    QFETCH(qint64, difference);
    QCOMPARE((Bytes(a) - Bytes(b)).value(), difference);
    Bytes inPlace(a);
    inPlace -= b;
    QCOMPARE(inPlace.value(), difference);
    QCOMPARE(inPlace.toString(), Bytes(difference).toString());
}

void TestBytes::parsesText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<bool>("logged");
    QTest::newRow("plain bytes") << "512 B" << qint64(512) << false;
    QTest::newRow("kilobytes") << "2 KB" << qint64(2048) << false;
    QTest::newRow("fraction of gigabytes") << " 1.5 GB " << qint64(1610612736) << false;
    QTest::newRow("unit is case-sensitive") << "3 mb" << qint64(0) << true;
    QTest::newRow("garbage") << "lots" << qint64(0) << true;
}

void TestBytes::parsesText()
{
    QFETCH(QString, text);
    QFETCH(qint64, bytes);
    QFETCH(bool, logged);
    LogCapture log;
    QCOMPARE(Bytes(text).value(), bytes);
    QCOMPARE(log.count(QStringLiteral("Could not parse bytes size: %1.").arg(text)), logged ? 1 : 0);
}

void TestBytes::roundsUpToWholeUnits_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<qint64>("rounded");
    const qint64 mib = 1 << 20;
    QTest::newRow("exact") << 100 * mib << 100 * mib;
    QTest::newRow("one byte over") << 100 * mib + 1 << 101 * mib;
    QTest::newRow("one byte under") << 100 * mib - 1 << 100 * mib;
    QTest::newRow("zero") << qint64(0) << qint64(0);
}

void TestBytes::roundsUpToWholeUnits()
{
    QFETCH(qint64, bytes);
    QFETCH(qint64, rounded);
    QCOMPARE(Bytes::roundedUp(Bytes(bytes), Bytes::MB).value(), rounded);
}

void TestBytes::multipliesToTheNearestByte_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<double>("factor");
    QTest::addColumn<qint64>("product");
    QTest::newRow("half rounds away from zero") << qint64(3) << 0.5 << qint64(2);
    QTest::newRow("below half rounds down") << qint64(10) << 0.24 << qint64(2);
    QTest::newRow("large") << qint64(85899345920) << 0.95 << qint64(81604378624);
}

void TestBytes::multipliesToTheNearestByte()
{
    QFETCH(qint64, bytes);
    QFETCH(double, factor);
    QFETCH(qint64, product);
    QCOMPARE((Bytes(bytes) * factor).value(), product);
}

void TestBytes::convertsAmountsOfAUnit()
{
    QCOMPARE(Bytes(1.0, Bytes::MB).value(), qint64(1048576));
    QCOMPARE(Bytes(10.0, Bytes::MB).value(), qint64(10485760));
    QCOMPARE(Bytes(0.5, Bytes::KB).value(), qint64(512));
    QCOMPARE(Bytes(1.0, Bytes::GB).inUnit(Bytes::MB), 1024.0);
    QVERIFY(Bytes(5) < Bytes(6));
    QVERIFY(Bytes(6) >= Bytes(6));
    QCOMPARE((Bytes(5) + Bytes(7)).value(), qint64(12));
}

KESTRAVIN_TEST_MAIN(TestBytes)
#include "tst_bytes.moc"
