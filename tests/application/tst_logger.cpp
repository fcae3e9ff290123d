#include "logger/Logger.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <thread>
#include <vector>

namespace Logger = Velmora::Logger;

namespace {

const QRegularExpression LineStart(QStringLiteral("^\\d{4}/\\d{2}/\\d{2} \\d{2}:\\d{2}:\\d{2}:\\d{3} "));

QString livePath()
{
    return Logger::logDirectory() + QStringLiteral("Velmora.log");
}

QByteArray liveContent()
{
    QFile file(livePath());
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

QStringList logFiles()
{
    return QDir(Logger::logDirectory()).entryList({QStringLiteral("*.log")}, QDir::Files, QDir::Name);
}

// Starts every test from an empty log directory and an open live file.
void freshLog()
{
    Logger::shutdown();
    QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).removeRecursively();
    QCOMPARE(Logger::initialize(Logger::Debug), 0);
}

void padLiveFile(qint64 size)
{
    Logger::shutdown();
    QFile file(livePath());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QVERIFY(file.write(QByteArray(static_cast<int>(size), 'p')) == size);
    file.close();
    QCOMPARE(Logger::initialize(Logger::Debug), 0);
}

} // namespace

class TestLogger : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { freshLog(); }
    void cleanupTestCase() { Logger::shutdown(); }

    void writesBothLineForms_data();
    void writesBothLineForms();
    void rotatesOnlyAboveTheLimit();
    void keepsAtMostFiveFiles();
    void stormFromThreadsAcrossRotations();
};

void TestLogger::initTestCase()
{
    QCoreApplication::setOrganizationName(QStringLiteral("BRANTEL"));
    QCoreApplication::setApplicationName(QStringLiteral("KESTRAVIN"));
    Logger::setConsoleEnabled(false);
}

void TestLogger::writesBothLineForms_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("consoleField");
    QTest::addColumn<QString>("fileField");

    QTest::newRow("debug") << int(Logger::Debug) << QStringLiteral("\033[34mDEBUG\033[0m    ") << QStringLiteral("DEBUG    ");
    QTest::newRow("warning") << int(Logger::Warning) << QStringLiteral("\033[33mWARNING\033[0m  ") << QStringLiteral("WARNING  ");
}

void TestLogger::writesBothLineForms()
{
    QFETCH(int, level);
    QFETCH(QString, consoleField);
    QFETCH(QString, fileField);
    QCOMPARE(consoleField.size(), 18);

    Logger::setLevel(Logger::Trace);
    LogCapture capture;
    const QString message = QStringLiteral("Connected to server. \u00e9");
    using Writer = void (*)(const QString&, const QString&);
    const Writer writers[] = {Logger::trace, Logger::debug, Logger::info, Logger::warning, Logger::error};
    writers[level](QString(), message);

    QCOMPARE(capture.entries().size(), 1);
    const QString console = capture.entries().first().line;
    QVERIFY2(LineStart.match(console).hasMatch(), qPrintable(console));
    QCOMPARE(console.mid(24), consoleField + QStringLiteral(" \033[36m : \033[0m") + message);

    const QString fileLine = QString::fromUtf8(liveContent());
    QVERIFY(LineStart.match(fileLine).hasMatch());
    QCOMPARE(fileLine.left(23), console.left(23));
    QCOMPARE(fileLine.mid(23), QStringLiteral(" ") + fileField + QStringLiteral("  : ") + message + QStringLiteral("\n"));
}

void TestLogger::rotatesOnlyAboveTheLimit()
{
    Logger::info(QString(), QStringLiteral("measure"));
    const qint64 lineSize = liveContent().size();

    padLiveFile(2000000 - lineSize);
    Logger::info(QString(), QStringLiteral("measure"));
    QCOMPARE(QFileInfo(livePath()).size(), qint64(2000000));
    QCOMPARE(logFiles(), QStringList{QStringLiteral("Velmora.log")});

    Logger::info(QString(), QStringLiteral("measure"));
    const QStringList afterRotation = logFiles();
    QCOMPARE(afterRotation.size(), 2);
    QVERIFY(afterRotation.contains(QStringLiteral("Velmora.log")));
    const QString rotated = afterRotation.at(afterRotation.at(0) == QLatin1String("Velmora.log") ? 1 : 0);
    QVERIFY2(QRegularExpression(QStringLiteral("^Velmora_\\d{4}_\\d{2}_\\d{2}_\\d{2}_\\d{2}_\\d{2}_\\d{3}\\.log$"))
                 .match(rotated).hasMatch(), qPrintable(rotated));
    QCOMPARE(QFileInfo(Logger::logDirectory() + rotated).size(), 2000000 + lineSize);
    QCOMPARE(QFileInfo(livePath()).size(), qint64(0));

    Logger::info(QString(), QStringLiteral("measure"));
    QCOMPARE(QFileInfo(livePath()).size(), lineSize);
}

void TestLogger::keepsAtMostFiveFiles()
{
    const QDateTime now = QDateTime::currentDateTime();
    for (int i = 1; i <= 7; ++i) {
        QFile old(Logger::logDirectory() + QStringLiteral("Velmora_old%1.log").arg(i));
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("old\n");
        old.flush();  // a later flush would make the file new again
        QVERIFY(old.setFileTime(now.addSecs(-100 * i), QFileDevice::FileModificationTime));
    }
    QFile other(Logger::logDirectory() + QStringLiteral("notes.txt"));
    QVERIFY(other.open(QIODevice::WriteOnly));
    other.close();

    padLiveFile(2000001);
    Logger::info(QString(), QStringLiteral("rotate"));

    const QStringList files = logFiles();
    QCOMPARE(files.size(), 5);
    QVERIFY(files.contains(QStringLiteral("Velmora.log")));
    QVERIFY(files.contains(QStringLiteral("Velmora_old1.log")));
    QVERIFY(files.contains(QStringLiteral("Velmora_old3.log")));
    QVERIFY(!files.contains(QStringLiteral("Velmora_old4.log")));
    QVERIFY(QFile::exists(Logger::logDirectory() + QStringLiteral("notes.txt")));
}

void TestLogger::stormFromThreadsAcrossRotations()
{
    // Four threads, enough lines for about seven rotations: each line whole and in its own order.
    constexpr int Threads = 4;
    constexpr int LinesEach = 15000;
    std::vector<std::thread> writers;
    for (int t = 0; t < Threads; ++t) {
        writers.emplace_back([t] {
            const QString body(200, QLatin1Char(char('a' + t)));
            for (int n = 0; n < LinesEach; ++n)
                Logger::debug(QString(), QStringLiteral("t%1 n%2 %3 end").arg(t).arg(n).arg(body));
        });
    }
    for (std::thread& writer : writers)
        writer.join();

    const QStringList files = logFiles();
    QCOMPARE(files.size(), 5);
    const QRegularExpression whole(QStringLiteral("^\\d{4}/\\d{2}/\\d{2} \\d{2}:\\d{2}:\\d{2}:\\d{3} DEBUG      : "
                                                  "t(\\d) n(\\d+) ([a-d])\\3{199} end$"));
    for (const QString& name : files) {
        QFile file(Logger::logDirectory() + name);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(name == QLatin1String("Velmora.log") || file.size() > 2000000);
        int last[Threads] = {-1, -1, -1, -1};
        const QList<QByteArray> content = file.readAll().split('\n');
        QCOMPARE(content.last(), QByteArray());
        for (int i = 0; i < content.size() - 1; ++i) {
            const QRegularExpressionMatch match = whole.match(QString::fromUtf8(content.at(i)));
            QVERIFY2(match.hasMatch(), qPrintable(name + QLatin1Char(':') + content.at(i).left(80)));
            const int t = match.captured(1).toInt();
            QCOMPARE(match.captured(3), QString(QLatin1Char(char('a' + t))));
            QVERIFY(match.captured(2).toInt() > last[t]);
            last[t] = match.captured(2).toInt();
        }
    }
}

KESTRAVIN_TEST_SUITE(TestLogger)
#include "tst_logger.moc"
