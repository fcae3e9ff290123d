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
    void parsesText_data();
    void parsesText();
    void roundsUpToWholeUnits_data();
    void roundsUpToWholeUnits();
};

void TestBytes::choosesTheUnitBelowAThousand_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("999 bytes") << qint64(999) << "999.00 B";
    QTest::newRow("1000 bytes") << qint64(1000) << "0.98 KB";
    QTest::newRow("a 240 GB drive") << qint64(240057409536) << "223.57 GB";
    QTest::newRow("1000 PiB reads in EB") << qint64(1000) * (qint64(1) << 50) << "0.98 EB";
}

void TestBytes::choosesTheUnitBelowAThousand()
{
    QFETCH(qint64, bytes);
    QFETCH(QString, text);
    QCOMPARE(Bytes(bytes).toString(), text);
}

void TestBytes::parsesText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<bool>("logged");
    QTest::newRow("plain bytes") << "512 B" << qint64(512) << false;
    QTest::newRow("fraction of gigabytes") << " 1.5 GB " << qint64(1610612736) << false;
    QTest::newRow("unit is case-sensitive") << "3 mb" << qint64(0) << true;
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
    QTest::newRow("one byte over") << 100 * mib + 1 << 101 * mib;
    QTest::newRow("one byte under") << 100 * mib - 1 << 100 * mib;
}

void TestBytes::roundsUpToWholeUnits()
{
    QFETCH(qint64, bytes);
    QFETCH(qint64, rounded);
    QCOMPARE(Bytes::roundedUp(Bytes(bytes), Bytes::MB).value(), rounded);
}

KESTRAVIN_TEST_SUITE(TestBytes)
#include "tst_bytes.moc"
