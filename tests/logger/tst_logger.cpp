#include "application/Logger.h"
#include "support/LogCapture.h"
#include "support/TestEnvironment.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
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
    void dropsCallsBelowTheLevel();
    void firstCallOpensTheFileAtDebugLevel();
    void secondInitializeKeepsTheFile();
    void writesMultiLineMessagesAsTheyStand();
    void rotatesOnlyAboveTheLimit();
    void keepsAtMostFiveFiles();
    void keepsLinesWholeAcrossThreads();
    void endsTheProcessWithoutALogFile();
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

    QTest::newRow("trace") << int(Logger::Trace) << QStringLiteral("\033[35mTRACE\033[0m    ") << QStringLiteral("TRACE    ");
    QTest::newRow("debug") << int(Logger::Debug) << QStringLiteral("\033[34mDEBUG\033[0m    ") << QStringLiteral("DEBUG    ");
    QTest::newRow("info") << int(Logger::Info) << QStringLiteral("\033[32mINFO\033[0m     ") << QStringLiteral("INFO     ");
    QTest::newRow("warning") << int(Logger::Warning) << QStringLiteral("\033[33mWARNING\033[0m  ") << QStringLiteral("WARNING  ");
    QTest::newRow("error") << int(Logger::Error) << QStringLiteral("\033[31mERROR\033[0m    ") << QStringLiteral("ERROR    ");
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

void TestLogger::dropsCallsBelowTheLevel()
{
    QCOMPARE(Logger::initialize(Logger::Warning), -1);
    LogCapture capture;
    Logger::trace(QString(), QStringLiteral("t"));
    Logger::debug(QString(), QStringLiteral("d"));
    Logger::info(QString(), QStringLiteral("i"));
    Logger::warning(QString(), QStringLiteral("w"));
    Logger::error(QString(), QStringLiteral("e"));
    QCOMPARE(capture.messages(), (QStringList{QStringLiteral("w"), QStringLiteral("e")}));
    QCOMPARE(QString::fromUtf8(liveContent()).count(QLatin1Char('\n')), 2);
}

void TestLogger::firstCallOpensTheFileAtDebugLevel()
{
    Logger::shutdown();
    QFile::remove(livePath());
    Logger::setLevel(Logger::Trace);
    Logger::info(QString(), QStringLiteral("first"));
    QVERIFY(QFile::exists(livePath()));
    QVERIFY(liveContent().endsWith(" : first\n"));

    LogCapture capture;
    Logger::trace(QString(), QStringLiteral("dropped"));
    Logger::debug(QString(), QStringLiteral("kept"));
    QCOMPARE(capture.messages(), QStringList{QStringLiteral("kept")});
}

void TestLogger::secondInitializeKeepsTheFile()
{
    Logger::info(QString(), QStringLiteral("one"));
    QCOMPARE(Logger::initialize(Logger::Debug), -1);
    Logger::info(QString(), QStringLiteral("two"));
    QCOMPARE(QString::fromUtf8(liveContent()).count(QLatin1Char('\n')), 2);
}

void TestLogger::writesMultiLineMessagesAsTheyStand()
{
    Logger::error(QString(), QStringLiteral("first\nsecond"));
    const QStringList lines = QString::fromUtf8(liveContent()).split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 3);
    QVERIFY(LineStart.match(lines.at(0)).hasMatch());
    QVERIFY(lines.at(0).endsWith(QLatin1String(" : first")));
    QCOMPARE(lines.at(1), QStringLiteral("second"));
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

void TestLogger::keepsLinesWholeAcrossThreads()
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 300; ++i)
                Logger::info(QString(), QStringLiteral("thread %1 line %2").arg(t).arg(i));
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    QStringList lines = QString::fromUtf8(liveContent()).split(QLatin1Char('\n'));
    QCOMPARE(lines.takeLast(), QString());
    QCOMPARE(lines.size(), 1200);
    for (const QString& line : lines)
        QVERIFY2(LineStart.match(line).hasMatch() && line.contains(QLatin1String(" : thread ")), qPrintable(line));
}

void TestLogger::endsTheProcessWithoutALogFile()
{
    // The data folder lies under a plain file, so neither the folder nor the log can be made.
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KESTRAVIN_LOGGER_CHILD"), QStringLiteral("1"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), QStringLiteral("/dev/null/data"));
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    QVERIFY(child.waitForFinished(10000));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.exitCode(), 1);
    const QByteArray said = child.readAllStandardError();
    QVERIFY2(said.contains("Unable to create log directory"), said.constData());
    QVERIFY(said.contains("Cannot create log file: /dev/null/data/BRANTEL/KESTRAVIN/Velmora.log"));
}

// Run as its own child, the program only opens its log: that is what the exit test watches.
int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsSet("KESTRAVIN_LOGGER_CHILD")) {
        QCoreApplication app(argc, argv);
        QCoreApplication::setOrganizationName(QStringLiteral("BRANTEL"));
        QCoreApplication::setApplicationName(QStringLiteral("KESTRAVIN"));
        return Logger::initialize(Logger::Debug);
    }
    QCoreApplication app(argc, argv);
    TestEnvironment::installConnectionWarningTrap();
    TestLogger test;
    const int result = QTest::qExec(&test, argc, argv);
    return TestEnvironment::connectionWarningSeen() ? 1 : result;
}
#include "tst_logger.moc"
