#include "performance/PerformanceCheck.h"
#include "performance/PerformanceResult.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "system/Drive.h"
#include "system/System.h"

#include "DiskPerformance.pb.h"

#include <QCoreApplication>
#include <QMetaEnum>
#include <QRegularExpression>
#include <QTest>

using Velmora::Message::Message;
using Velmora::Performance::PerformanceCheck;
using Velmora::Performance::PerformanceResult;
using Velmora::System::Drive;

namespace {

QByteArray answerPayload(int code, int driveId, double readBytesPerSecond, double writeBytesPerSecond)
{
    Velmora::Message::DiskPerformance answer;
    answer.set_code(static_cast<Velmora::Message::Code>(code));
    answer.set_driveid(static_cast<quint32>(driveId));
    answer.set_readspeed(readBytesPerSecond);
    answer.set_writespeed(writeBytesPerSecond);
    // Figures the check must not read.
    answer.set_randomreadspeed(9.9e12);
    answer.set_randomwritespeed(9.9e12);
    const std::string bytes = answer.SerializeAsString();
    return QByteArray(bytes.data(), static_cast<int>(bytes.size()));
}

// A machine with drives, a check wired to it, a clock the test moves by hand, and one journal of
// everything the check emits, in order.
class Rig
{
public:
    explicit Rig(const QList<int>& driveIds = {1})
    {
        for (int id : driveIds) {
            system.addDrive(new Drive(id, QStringLiteral("Model %1").arg(id), QStringLiteral("SN%1").arg(id),
                QString(), QStringLiteral("FW1"), Velmora::System::Bytes(qint64(256) << 30), 4, 4, true,
                QStringLiteral("SATA"), &system));
        }
        if (!driveIds.isEmpty())
            system.setCurrentDrive(driveIds.first());

        check.setClock([this] { return now; });
        const auto status = [this](PerformanceCheck::TestStatus s) {
            journal << QStringLiteral("status ") + QMetaEnum::fromType<PerformanceCheck::TestStatus>().valueToKey(s);
        };
        QObject::connect(&check, &PerformanceCheck::statusChanged, status);
        QObject::connect(&check, &PerformanceCheck::resultChanged, [this] { journal << QStringLiteral("result"); });
        QObject::connect(&check, &PerformanceCheck::progressChanged,
            [this](int p) { journal << QStringLiteral("progress %1").arg(p); });
        QObject::connect(&check, &PerformanceCheck::elapsedTimeChanged,
            [this](int s) { journal << QStringLiteral("elapsed %1").arg(s); });
        QObject::connect(&check, &PerformanceCheck::remainingTimeChanged,
            [this](int s) { journal << QStringLiteral("remaining %1").arg(s); });
        QObject::connect(&check, qOverload<Message::MessageType, QByteArray>(&PerformanceCheck::sendMessage),
            [this](Message::MessageType type, const QByteArray& payload) {
                journal << QStringLiteral("send %1 %2").arg(int(type)).arg(QString::fromLatin1(payload.toHex(' ')));
            });
        QObject::connect(&check, qOverload<Message::MessageType>(&PerformanceCheck::sendMessage),
            [this](Message::MessageType type) { journal << QStringLiteral("send %1").arg(int(type)); });
    }

    Drive* drive(int id) const { return system.drive(id); }

    void answer(int code, int driveId = 1, double read = 500e6, double write = 400e6)
    {
        check.handleMessage(Message::DiskBenchmarkResponse, answerPayload(code, driveId, read, write));
    }

    // The next round is scheduled for the next turn of the event loop.
    void nextTurn() { QCoreApplication::processEvents(); }

    // Starts a test and lets `rounds` rounds finish, leaving the next one in flight.
    void startAndFinishRounds(int rounds, double read = 500e6, double write = 400e6)
    {
        check.startTest();
        for (int i = 0; i < rounds; ++i) {
            answer(0, system.currentDriveId(), read, write);
            nextTurn();
        }
        journal.clear();
    }

    QStringList take()
    {
        QStringList taken = journal;
        journal.clear();
        return taken;
    }

    int sends() const { return journal.filter(QRegularExpression(QStringLiteral("^send "))).size(); }

    Velmora::System::System system;
    PerformanceCheck check{&system};
    QDateTime now{QDate(2026, 11, 23), QTime(12, 0), Qt::UTC};
    QStringList journal;
};

const QStringList abandoned(const QString& status)
{
    QStringList lines;
    if (!status.isEmpty())
        lines << QStringLiteral("status ") + status;
    return lines << QStringLiteral("result") << QStringLiteral("remaining 0") << QStringLiteral("elapsed 0")
                 << QStringLiteral("progress 0");
}

} // namespace

class TestPerformanceCheck : public QObject
{
    Q_OBJECT

private slots:
    void tenRoundsBackToBackThenFinished();
    void otherCodesFailTheTest_data();
    void otherCodesFailTheTest();
    void cancelInRoundThreeDropsTheLateAnswer();
};

void TestPerformanceCheck::tenRoundsBackToBackThenFinished()
{
    Rig rig;
    rig.check.startTest();
    rig.take();

    for (int round = 1; round <= 9; ++round) {
        rig.answer(0);
        QCOMPARE(rig.take(), QStringList({QStringLiteral("elapsed 0"), QStringLiteral("remaining 0"),
                                 QStringLiteral("progress %1").arg(round * 10)}));
        // Not from inside the delivery of the answer, but at the next turn of the loop.
        rig.nextTurn();
        QCOMPARE(rig.sends(), 1);
        rig.take();
    }

    rig.answer(0);
    QCOMPARE(rig.take(), QStringList({QStringLiteral("elapsed 0"), QStringLiteral("remaining 0"),
                             QStringLiteral("progress 100"), QStringLiteral("status Finished"),
                             QStringLiteral("remaining 0"), QStringLiteral("result")}));
    rig.nextTurn();
    QCOMPARE(rig.sends(), 0);
    QCOMPARE(rig.check.status(), PerformanceCheck::Finished);
    QVERIFY(!rig.check.isRunning());

    // An eleventh answer was never asked for and changes nothing.
    rig.answer(0, 1, 900e6, 900e6);
    rig.nextTurn();
    QVERIFY(rig.take().isEmpty());
    QCOMPARE(rig.check.currentResult()->readSpeed(), 500.0);
    QCOMPARE(rig.check.currentResult()->writeSpeed(), 400.0);
}

void TestPerformanceCheck::otherCodesFailTheTest_data()
{
    QTest::addColumn<int>("code");
    for (int code : {1, 99})
        QTest::newRow(qPrintable(QString::number(code))) << code;
}

void TestPerformanceCheck::otherCodesFailTheTest()
{
    QFETCH(int, code);

    Rig rig;
    rig.startAndFinishRounds(2);
    LogCapture log;
    rig.answer(code, 1, 900e6, 900e6);
    rig.nextTurn();

    QCOMPARE(rig.take(), QStringList{QStringLiteral("status Failed")});
    QCOMPARE(log.messages(Velmora::Logger::Error),
        QStringList{QStringLiteral("Error while running performance test: %1.").arg(code)});
    // The figures of the rounds that did finish stay.
    QCOMPARE(rig.check.currentResult()->readSpeed(), 500.0);
    QCOMPARE(rig.check.currentResult()->writeSpeed(), 400.0);

    rig.answer(0, 1, 900e6, 900e6);
    rig.nextTurn();
    QVERIFY(rig.take().isEmpty());
    QCOMPARE(rig.check.status(), PerformanceCheck::Failed);
}

void TestPerformanceCheck::cancelInRoundThreeDropsTheLateAnswer()
{
    Rig rig;
    rig.startAndFinishRounds(2);
    PerformanceResult* result = rig.check.currentResult();
    QVERIFY(result && !result->isEmpty());

    rig.check.stopTest();
    QCOMPARE(rig.take(), abandoned(QStringLiteral("Canceled")));
    QVERIFY(result->isEmpty());
    QCOMPARE(result->readSpeed(), 0.0);
    QCOMPARE(result->writeSpeed(), 0.0);

    rig.answer(0, 1, 900e6, 900e6);
    rig.nextTurn();
    QVERIFY(rig.take().isEmpty());
    QVERIFY(result->isEmpty());
    QCOMPARE(rig.check.status(), PerformanceCheck::Canceled);
}

KESTRAVIN_TEST_MAIN(TestPerformanceCheck)
#include "tst_performancecheck.moc"
