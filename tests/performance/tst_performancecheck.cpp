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

#include <cmath>
#include <limits>

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
    void registersForBenchmarkAnswersOnly();
    void startSendsTheRequestFirst_data();
    void startSendsTheRequestFirst();
    void tenRoundsBackToBackThenFinished();
    void estimatesFromTheMeanRound_data();
    void estimatesFromTheMeanRound();
    void keepsTheBestRound_data();
    void keepsTheBestRound();
    void figuresGoToTheDriveNamedInTheAnswer_data();
    void figuresGoToTheDriveNamedInTheAnswer();
    void interimCodesAreIgnored_data();
    void interimCodesAreIgnored();
    void otherCodesFailTheTest_data();
    void otherCodesFailTheTest();
    void cancelInRoundThreeDropsTheLateAnswer();
    void cancelBeforeTheScheduledRoundSendsNothing();
    void driveChangeAbandonsTheTest();
    void driveChangeWhileIdleKeepsStatus();
    void startWithoutDriveChangesNothing_data();
    void startWithoutDriveChangesNothing();
    void restartWhileRunning();
    void unreadableAnswerLeavesTheTestWaiting();
    void otherMessageTypesAreIgnored();
    void resultKeepsTheLargerFigure_data();
    void resultKeepsTheLargerFigure();
};

void TestPerformanceCheck::registersForBenchmarkAnswersOnly()
{
    Rig rig;
    QCOMPARE(rig.check.name(), QStringLiteral("Velmora::Performance::PerformanceCheck"));
    QCOMPARE(rig.check.messageTypes(), QList<Message::MessageType>{Message::DiskBenchmarkResponse});
    QCOMPARE(rig.check.status(), PerformanceCheck::Idle);
    QCOMPARE(rig.check.currentResult(), nullptr);
    // A reconnection of the pipe neither starts nor sends anything.
    rig.check.clientConnected();
    QVERIFY(rig.take().isEmpty());
}

void TestPerformanceCheck::startSendsTheRequestFirst_data()
{
    QTest::addColumn<int>("driveId");
    QTest::addColumn<QString>("payload");

    // DriveID 0 is proto3's default and so isn't on the wire; 128 MiB and 4 MiB are varints of four bytes.
    QTest::newRow("drive 0") << 0 << QStringLiteral("10 80 80 80 40 18 80 80 80 02");
    QTest::newRow("drive 3") << 3 << QStringLiteral("08 03 10 80 80 80 40 18 80 80 80 02");
    QTest::newRow("drive 300") << 300 << QStringLiteral("08 ac 02 10 80 80 80 40 18 80 80 80 02");
}

void TestPerformanceCheck::startSendsTheRequestFirst()
{
    QFETCH(int, driveId);
    QFETCH(QString, payload);

    Rig rig({driveId});
    rig.check.startTest();

    QCOMPARE(rig.take(), QStringList({QStringLiteral("send 50 ") + payload, QStringLiteral("status Running"),
                             QStringLiteral("result"), QStringLiteral("remaining 0"), QStringLiteral("elapsed 0"),
                             QStringLiteral("progress 0")}));
    QVERIFY(rig.check.isRunning());

    // Every round asks the same question.
    rig.answer(0, driveId);
    rig.take();
    rig.nextTurn();
    QCOMPARE(rig.take(), QStringList{QStringLiteral("send 50 ") + payload});
}

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

void TestPerformanceCheck::estimatesFromTheMeanRound_data()
{
    QTest::addColumn<int>("round");
    QTest::addColumn<int>("elapsedMs");
    QTest::addColumn<int>("elapsed");
    QTest::addColumn<int>("remaining");

    QTest::newRow("first round, no whole second yet") << 1 << 0 << 0 << 0;
    QTest::newRow("first round, 3 s") << 1 << 3000 << 3 << 27;
    QTest::newRow("parts of a second don't count") << 1 << 1900 << 1 << 9;
    QTest::newRow("third round, 3.33 goes down") << 3 << 1000 << 1 << 2;
    QTest::newRow("third round, 6.67 goes up") << 3 << 2000 << 2 << 5;
    QTest::newRow("fourth round, 2.5 goes up") << 4 << 1000 << 1 << 2;
    QTest::newRow("eighth round, 7.5 goes up") << 8 << 6000 << 6 << 2;
    QTest::newRow("tenth round") << 10 << 53000 << 53 << 0;
}

void TestPerformanceCheck::estimatesFromTheMeanRound()
{
    QFETCH(int, round);
    QFETCH(int, elapsedMs);
    QFETCH(int, elapsed);
    QFETCH(int, remaining);

    Rig rig;
    const QDateTime start = rig.now;
    rig.startAndFinishRounds(round - 1);
    rig.now = start.addMSecs(elapsedMs);
    rig.answer(0);

    QCOMPARE(rig.take().mid(0, 3), QStringList({QStringLiteral("elapsed %1").arg(elapsed),
                                       QStringLiteral("remaining %1").arg(remaining),
                                       QStringLiteral("progress %1").arg(round * 10)}));
}

void TestPerformanceCheck::keepsTheBestRound_data()
{
    QTest::addColumn<QVector<double>>("reads");
    QTest::addColumn<QVector<double>>("writes");
    QTest::addColumn<double>("bestRead");
    QTest::addColumn<double>("bestWrite");

    QVector<double> rising;
    QVector<double> slowerLast;
    for (int i = 1; i <= 10; ++i)
        rising << i * 50e6;
    slowerLast = rising;
    slowerLast.last() = 10e6;

    QTest::newRow("rising") << rising << rising << 500.0 << 500.0;
    QTest::newRow("slower last round") << slowerLast << rising << 450.0 << 500.0;
    QTest::newRow("read and write apart")
        << QVector<double>(10, 550123456.0) << QVector<double>(10, 510987654.0) << 550.123456 << 510.987654;
    QTest::newRow("peaks in different rounds")
        << QVector<double>{1e6, 2e6, 9e6, 3e6, 1e6, 1e6, 1e6, 1e6, 1e6, 1e6}
        << QVector<double>{1e6, 1e6, 1e6, 1e6, 1e6, 1e6, 1e6, 7e6, 1e6, 1e6} << 9.0 << 7.0;
}

void TestPerformanceCheck::keepsTheBestRound()
{
    QFETCH(QVector<double>, reads);
    QFETCH(QVector<double>, writes);
    QFETCH(double, bestRead);
    QFETCH(double, bestWrite);

    Rig rig;
    rig.check.startTest();
    for (int i = 0; i < reads.size(); ++i) {
        rig.answer(0, 1, reads.at(i), writes.at(i));
        rig.nextTurn();
    }

    QCOMPARE(rig.check.status(), PerformanceCheck::Finished);
    PerformanceResult* result = rig.drive(1)->performanceResult();
    QVERIFY(result);
    QCOMPARE(rig.check.currentResult(), result);
    QVERIFY(!result->isEmpty());
    QCOMPARE(result->readSpeed(), bestRead);
    QCOMPARE(result->writeSpeed(), bestWrite);

    // A second test starts from nothing: the old best doesn't carry over.
    rig.check.startTest();
    QVERIFY(result->isEmpty());
    rig.answer(0, 1, 1e6, 2e6);
    QCOMPARE(result->readSpeed(), 1.0);
    QCOMPARE(result->writeSpeed(), 2.0);
}

void TestPerformanceCheck::figuresGoToTheDriveNamedInTheAnswer_data()
{
    QTest::addColumn<int>("answeredDrive");
    QTest::addColumn<int>("warnings");

    QTest::newRow("the tested drive") << 1 << 0;
    QTest::newRow("another known drive") << 2 << 0;
    QTest::newRow("a drive that isn't there") << 9 << 1;
}

void TestPerformanceCheck::figuresGoToTheDriveNamedInTheAnswer()
{
    QFETCH(int, answeredDrive);
    QFETCH(int, warnings);

    Rig rig({1, 2});
    rig.check.startTest();
    rig.take();
    LogCapture log;
    rig.answer(0, answeredDrive, 300e6, 200e6);

    for (int id : {1, 2}) {
        PerformanceResult* result = rig.drive(id)->performanceResult();
        QCOMPARE(result != nullptr, id == answeredDrive);
        if (result) {
            QCOMPARE(result->parent(), rig.drive(id));
            QCOMPARE(result->readSpeed(), 300.0);
            QCOMPARE(result->writeSpeed(), 200.0);
        }
    }
    QCOMPARE(log.count(QStringLiteral("Performance result for unknown drive 9 dropped.")), warnings);
    // Either way the round counts and the next one follows.
    QVERIFY(rig.take().contains(QStringLiteral("progress 10")));
    rig.nextTurn();
    QCOMPARE(rig.sends(), 1);
}

void TestPerformanceCheck::interimCodesAreIgnored_data()
{
    QTest::addColumn<int>("code");
    QTest::newRow("2") << 2;
    QTest::newRow("7") << 7;
}

void TestPerformanceCheck::interimCodesAreIgnored()
{
    QFETCH(int, code);

    Rig rig;
    rig.startAndFinishRounds(2);
    LogCapture log;
    rig.answer(code, 1, 900e6, 900e6);
    rig.nextTurn();

    QVERIFY(rig.take().isEmpty());
    QVERIFY(log.messages().isEmpty());
    QCOMPARE(rig.check.status(), PerformanceCheck::Running);
    QCOMPARE(rig.check.currentResult()->readSpeed(), 500.0);

    // The test waits on for the real answer of round 3.
    rig.answer(0);
    QCOMPARE(rig.take().mid(2, 1), QStringList{QStringLiteral("progress 30")});
}

void TestPerformanceCheck::otherCodesFailTheTest_data()
{
    QTest::addColumn<int>("code");
    for (int code : {1, 3, 4, 5, 6, 99})
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

void TestPerformanceCheck::cancelBeforeTheScheduledRoundSendsNothing()
{
    Rig rig;
    rig.check.startTest();
    rig.answer(0);
    rig.check.stopTest();
    rig.take();
    rig.nextTurn();
    QCOMPARE(rig.sends(), 0);
}

void TestPerformanceCheck::driveChangeAbandonsTheTest()
{
    Rig rig({1, 2});
    auto* earlier = new PerformanceResult;
    earlier->setReadSpeed(123.0);
    rig.drive(2)->setPerformanceResult(earlier);

    rig.startAndFinishRounds(1, 300e6, 200e6);
    rig.system.setCurrentDrive(2);

    QCOMPARE(rig.take(), abandoned(QStringLiteral("Idle")));
    QCOMPARE(rig.check.currentResult(), earlier);
    QVERIFY(earlier->isEmpty());
    // The drive that was being tested keeps what its finished round gave.
    QCOMPARE(rig.drive(1)->performanceResult()->readSpeed(), 300.0);

    rig.answer(0, 1, 900e6, 900e6);
    rig.nextTurn();
    QVERIFY(rig.take().isEmpty());
    QCOMPARE(rig.drive(1)->performanceResult()->readSpeed(), 300.0);

    // The next test is of the drive now selected.
    rig.check.startTest();
    QCOMPARE(rig.take().first(), QStringLiteral("send 50 08 02 10 80 80 80 40 18 80 80 80 02"));
}

void TestPerformanceCheck::driveChangeWhileIdleKeepsStatus()
{
    Rig rig({1, 2});
    rig.system.setCurrentDrive(2);
    QCOMPARE(rig.take(), abandoned(QString()));
    QCOMPARE(rig.check.status(), PerformanceCheck::Idle);
}

void TestPerformanceCheck::startWithoutDriveChangesNothing_data()
{
    QTest::addColumn<bool>("finishFirst");
    QTest::newRow("no drive ever") << false;
    QTest::newRow("drive gone after a finished test") << true;
}

void TestPerformanceCheck::startWithoutDriveChangesNothing()
{
    QFETCH(bool, finishFirst);

    Rig rig(finishFirst ? QList<int>{1} : QList<int>{});
    PerformanceCheck::TestStatus before = PerformanceCheck::Idle;
    if (finishFirst) {
        rig.startAndFinishRounds(PerformanceCheck::Rounds);
        before = PerformanceCheck::Finished;
        rig.system.removeDrive(1);
    }
    rig.take();

    LogCapture log;
    rig.check.startTest();
    rig.nextTurn();

    QVERIFY(rig.take().isEmpty());
    QCOMPARE(rig.check.status(), before);
    QCOMPARE(log.messages(Velmora::Logger::Error),
        QStringList{QStringLiteral("Tried to run performance test without drive selected.")});
}

void TestPerformanceCheck::restartWhileRunning()
{
    Rig rig;
    const QDateTime start = rig.now;
    rig.startAndFinishRounds(2);
    PerformanceResult* result = rig.check.currentResult();

    rig.now = start.addSecs(40);
    LogCapture log;
    rig.check.startTest();

    QCOMPARE(log.messages(Velmora::Logger::Warning), QStringList{QStringLiteral("Test is already running. Restarting.")});
    QCOMPARE(rig.take(), abandoned(QStringLiteral("Canceled"))
            + QStringList({QStringLiteral("send 50 08 01 10 80 80 80 40 18 80 80 80 02"),
                QStringLiteral("status Running")})
            + abandoned(QString()));
    QVERIFY(result->isEmpty());

    // The count and the clock start again.
    rig.now = start.addSecs(44);
    rig.answer(0);
    QCOMPARE(rig.take(), QStringList({QStringLiteral("elapsed 4"), QStringLiteral("remaining 36"),
                             QStringLiteral("progress 10")}));
}

void TestPerformanceCheck::unreadableAnswerLeavesTheTestWaiting()
{
    Rig rig;
    rig.startAndFinishRounds(1);
    LogCapture log;
    // A length-delimited field that claims more bytes than follow.
    rig.check.handleMessage(Message::DiskBenchmarkResponse, QByteArray::fromHex("2a05ffff"));
    rig.nextTurn();

    QCOMPARE(log.messages(Velmora::Logger::Error), QStringList{QStringLiteral("Could not parse message.")});
    QVERIFY(rig.take().isEmpty());
    QCOMPARE(rig.check.status(), PerformanceCheck::Running);

    rig.answer(0);
    QCOMPARE(rig.take().mid(2, 1), QStringList{QStringLiteral("progress 20")});
}

void TestPerformanceCheck::otherMessageTypesAreIgnored()
{
    Rig rig;
    rig.startAndFinishRounds(1);
    LogCapture log;
    for (Message::MessageType type : {Message::DiskBenchmarkRequest, Message::Smart, Message::Error})
        rig.check.handleMessage(type, answerPayload(0, 1, 900e6, 900e6));
    rig.nextTurn();

    QVERIFY(rig.take().isEmpty());
    QVERIFY(log.messages().isEmpty());
    QCOMPARE(rig.check.currentResult()->readSpeed(), 500.0);
}

void TestPerformanceCheck::resultKeepsTheLargerFigure_data()
{
    QTest::addColumn<QVector<double>>("figures");
    QTest::addColumn<double>("kept");
    QTest::addColumn<bool>("empty");

    QTest::newRow("none") << QVector<double>{} << 0.0 << true;
    QTest::newRow("a zero still counts as a figure") << QVector<double>{0.0} << 0.0 << false;
    QTest::newRow("falling") << QVector<double>{3.0, 2.0, 1.0} << 3.0 << false;
    QTest::newRow("below zero") << QVector<double>{-5.0} << 0.0 << false;
    QTest::newRow("not a number") << QVector<double>{7.0, std::numeric_limits<double>::quiet_NaN()} << 7.0 << false;
}

void TestPerformanceCheck::resultKeepsTheLargerFigure()
{
    QFETCH(QVector<double>, figures);
    QFETCH(double, kept);
    QFETCH(bool, empty);

    PerformanceResult read;
    PerformanceResult write;
    for (double figure : figures) {
        read.setReadSpeed(figure);
        write.setWriteSpeed(figure);
    }
    QCOMPARE(read.readSpeed(), kept);
    QCOMPARE(read.writeSpeed(), 0.0);
    QCOMPARE(write.writeSpeed(), kept);
    QCOMPARE(write.readSpeed(), 0.0);
    QCOMPARE(read.isEmpty(), empty);
    QCOMPARE(write.isEmpty(), empty);

    read.reset();
    QVERIFY(read.isEmpty());
    QCOMPARE(read.readSpeed(), 0.0);
}

KESTRAVIN_TEST_MAIN(TestPerformanceCheck)
#include "tst_performancecheck.moc"
