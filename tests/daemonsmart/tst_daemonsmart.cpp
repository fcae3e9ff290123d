#include "SmartErrors.h"
#include "SmartReader.h"
#include "SystemReportReader.h"
#include "TrimCommand.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <thread>

#include <unistd.h>

using namespace Velmora::Daemon::Smart;
using Velmora::Message::SmartRequest;

namespace {

QString fixture(const QString& name)
{
    return QStringLiteral(KESTRAVIN_FIXTURES "/") + name;
}

// Every attribute as "id:current/worst/threshold/status:raw bytes", in answer order.
QString describe(const Velmora::Message::Smart& answer)
{
    QStringList attributes;
    for (const auto& a : answer.attributes())
        attributes << QStringLiteral("%1:%2/%3/%4/%5:%6").arg(a.id()).arg(a.current()).arg(a.worst())
                          .arg(a.threshold()).arg(a.status()).arg(QString::fromStdString(a.data()));
    return attributes.join(QLatin1Char(' '));
}

// Processes whose parent is this test: a killed child that is never reaped stays here as a zombie.
int childProcesses()
{
    int children = 0;
    const QStringList pids = QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& pid : pids) {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
        if (!stat.open(QIODevice::ReadOnly))
            continue;
        const QByteArray text = stat.readAll(); // "pid (name) state ppid ..."
        children += text.mid(text.lastIndexOf(')') + 2).split(' ').value(1).toInt() == getpid() ? 1 : 0;
    }
    return children;
}

} // namespace

class DaemonSmartTest : public QObject
{
    Q_OBJECT

private slots:
    void smartAnswer_data();
    void smartAnswer();
    void stuckSmartctlIsKilled_data();
    void stuckSmartctlIsKilled();
    void realSmartctlOnTheVirtioDisk();
    void systemReport_data();
    void systemReport();
    void trimCommand_data();
    void trimCommand();
};

void DaemonSmartTest::smartAnswer_data()
{
    QTest::addColumn<QString>("smartctl");
    QTest::addColumn<QString>("device");
    QTest::addColumn<int>("attributeId"); // 0: all attributes
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("attributes");
    QTest::addColumn<QString>("warning");

    const QString fake = fixture(QStringLiteral("fake-smartctl"));
    const QString sata = fixture(QStringLiteral("sata-ssd.json"));
    QTest::newRow("sata ssd") << fake << sata << 0 << 0
        << "1:120/120/50/51:000000000000 5:100/100/10/51:030000000000 9:98/98/0/50:022F00000000 "
           "12:99/99/0/50:230600000000 173:97/97/0/50:0A0014000000 194:59/41/0/34:290012002900 "
           "231:97/97/10/19:610000000000 241:100/100/0/50:F6E5D4C3B2A1" << QString();
    QTest::newRow("one attribute") << fake << sata << 194 << 0 << "194:59/41/0/34:290012002900" << QString();
    QTest::newRow("absent attribute") << fake << sata << 200 << int(NoSmart) << QString() << QString();
    QTest::newRow("nvme ssd") << fake << fixture(QStringLiteral("nvme-ssd.json")) << 0 << 0
        << "9:0/0/0/0:E11000000000 12:0/0/0/0:690300000000 194:0/0/0/0:260000000000 "
           "231:97/97/0/0:610000000000 241:0/0/0/0:983A00000000" << QString();
    QTest::newRow("nvme past its rated life") << fake << fixture(QStringLiteral("nvme-worn.json")) << 0 << 0
        << "231:0/0/0/0:000000000000" << QString();
    QTest::newRow("usb bridge without smart") << fake << fixture(QStringLiteral("usb-no-smart.json")) << 0
        << int(NoSmart) << QString() << QString();
    QTest::newRow("smart disabled") << fake << fixture(QStringLiteral("smart-disabled.json")) << 0
        << int(NoSmart) << QString() << QString();
    QTest::newRow("garbage") << fake << fixture(QStringLiteral("garbage.json")) << 0 << int(ToolFailed)
        << QString() << "smartctl for .*garbage.json cannot be parsed";
    QTest::newRow("truncated") << fake << fixture(QStringLiteral("truncated.json")) << 0 << int(ToolFailed)
        << QString() << "smartctl for .*truncated.json cannot be parsed";
    QTest::newRow("smartctl missing") << QStringLiteral("/nonexistent/smartctl") << sata << 0 << int(ToolMissing)
        << QString() << "Cannot run /nonexistent/smartctl";
    QTest::newRow("device gone") << fake << QStringLiteral("/dev/kv-no-such-disk") << 0 << int(NoDrive)
        << QString() << "No device for drive 7";
    QTest::newRow("unknown drive") << fake << QString() << 0 << int(NoDrive) << QString() << "No device for drive 7";
}

void DaemonSmartTest::smartAnswer()
{
    QFETCH(QString, smartctl);
    QFETCH(QString, device);
    QFETCH(int, attributeId);
    QFETCH(int, code);
    QFETCH(QString, attributes);
    QFETCH(QString, warning);

    if (!warning.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(warning));
    SmartRequest request;
    request.set_driveid(7);
    request.set_allattributes(attributeId == 0);
    request.set_attributeid(quint32(attributeId));
    const std::atomic_bool stop{false};
    const auto answer = SmartReader(smartctl).read(request, device, stop);
    QCOMPARE(int(answer.errorcode()), code);
    QCOMPARE(answer.driveid(), 7u);
    QCOMPARE(describe(answer), attributes);
}

void DaemonSmartTest::stuckSmartctlIsKilled_data()
{
    QTest::addColumn<int>("limitMs");
    QTest::addColumn<int>("stopAfterMs"); // the request withdrawn by the router; 0: never
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");

    QTest::newRow("time limit") << 300 << 0 << int(ToolTimedOut) << "did not finish within 300 ms";
    QTest::newRow("withdrawn") << 20000 << 300 << int(ToolFailed) << "read-out of .* withdrawn";
}

void DaemonSmartTest::stuckSmartctlIsKilled()
{
    QFETCH(int, limitMs);
    QFETCH(int, stopAfterMs);
    QFETCH(int, code);
    QFETCH(QString, message);

    QTest::ignoreMessage(stopAfterMs ? QtInfoMsg : QtWarningMsg, QRegularExpression(message));
    SmartRequest request;
    request.set_allattributes(true);
    std::atomic_bool stop{false};
    std::thread router([&stop, stopAfterMs] {
        std::this_thread::sleep_for(std::chrono::milliseconds(stopAfterMs));
        stop = stopAfterMs > 0;
    });
    QElapsedTimer clock;
    clock.start();
    const auto answer = SmartReader(fixture(QStringLiteral("slow-smartctl")), std::chrono::milliseconds(limitMs))
                            .read(request, fixture(QStringLiteral("sata-ssd.json")), stop);
    const qint64 elapsed = clock.elapsed();
    router.join();
    QCOMPARE(int(answer.errorcode()), code);
    QVERIFY2(elapsed < 1500, qPrintable(QString::number(elapsed)));
    QCOMPARE(childProcesses(), 0);
}

void DaemonSmartTest::realSmartctlOnTheVirtioDisk()
{
    if (!QFile::exists(SmartReader::defaultSmartctlPath()) || !QFile::exists(QStringLiteral("/dev/vda")))
        QSKIP("needs smartmontools and a virtio disk /dev/vda");
    SmartRequest request;
    request.set_allattributes(true);
    const std::atomic_bool stop{false};
    const auto answer = SmartReader().read(request, QStringLiteral("/dev/vda"), stop);
    // A virtio disk passes no SMART through, whoever asks.
    QCOMPARE(int(answer.errorcode()), int(NoSmart));
    QCOMPARE(answer.attributes_size(), 0);
}

void DaemonSmartTest::systemReport_data()
{
    QTest::addColumn<QString>("root");
    QTest::addColumn<uint>("peer");
    QTest::addColumn<QStringList>("texts"); // maker, model, board, firmware version, system, user
    QTest::addColumn<QList<bool>>("flags"); // UEFI, AHCI, TRIM, peer is admin
    QTest::addColumn<QList<quint64>>("numbers"); // memory total, available, service, processors

    QTest::newRow("uefi machine with an ssd") << "machine" << 0u
        << QStringList{"Orrin Computing", "OC-Tower 5", "Orrin TZ-690 Rev 1.1", "2.04.1", "Tessel Linux 4 \"Fjord\"", "root"}
        << QList<bool>{true, true, true, true}
        << QList<quint64>{16314532ull * 1024, 9876543ull * 1024, 5120ull * 1024, 2};
    QTest::newRow("bios machine with a spinning disk") << "bios" << 65534u
        << QStringList{"", "", "  ", "", "", "nobody"} << QList<bool>{false, false, false, false}
        << QList<quint64>{0, 0, 0, 0};
}

void DaemonSmartTest::systemReport()
{
    QFETCH(QString, root);
    QFETCH(uint, peer);
    QFETCH(QStringList, texts);
    QFETCH(QList<bool>, flags);
    QFETCH(QList<quint64>, numbers);

    const auto summary = SystemReportReader(fixture(root), {QStringLiteral("aarch64"), QStringLiteral("6.1.0-9")}).read(peer);
    const auto& board = summary.baseboardinfo();
    const auto& os = summary.operatingsysteminfo();
    const auto text = [](const std::string& value) { return QString::fromStdString(value); };
    QCOMPARE(QStringList({text(summary.computermanufacturer()), text(summary.computermodel()),
                          text(board.manufacturer() + ' ' + board.product() + ' ' + board.version()),
                          text(summary.biosinfo().version()), text(os.name()), text(os.user())}),
             texts);
    QCOMPARE(QList<bool>({summary.biosinfo().isuefi(), board.ahcienabled(), board.trimenabled(), os.isuseradmin()}), flags);
    const auto& memory = summary.memoryinfo();
    QCOMPARE(QList<quint64>({memory.totalmemorysize(), memory.memoryavailable(), memory.memoryusedbyservice(),
                             summary.processorinfo().corenumber()}),
             numbers);
    QCOMPARE(text(os.architecture() + ' ' + os.version() + ' ' + os.windowsdirectory()), QStringLiteral("aarch64 6.1.0-9 /"));
    QVERIFY(board.serialnumber().empty() && summary.biosinfo().serialnumber().empty());
}

void DaemonSmartTest::trimCommand_data()
{
    QTest::addColumn<QString>("root"); // a recorded tree, or empty for one with the SSD mounted with `options`
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("systemctl");
    QTest::addColumn<bool>("enable");
    QTest::addColumn<bool>("mayChange");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("trimEnabled");

    const QString fails = QStringLiteral("systemctl-fail");
    const QString enables = QStringLiteral("systemctl-enable");
    QTest::newRow("read: ssd with the timer") << "machine" << "" << fails << false << false << 0 << true;
    QTest::newRow("read: ssd mounted with discard") << "" << "rw,discard" << fails << false << false << 0 << true;
    QTest::newRow("read: ssd never trimmed") << "" << "rw,nodiscard" << fails << false << false << 0 << false;
    QTest::newRow("enable: already on") << "machine" << "" << fails << true << false << 0 << true;
    QTest::newRow("enable: only a spinning disk") << "bios" << "" << fails << true << true << 5 << false;
    QTest::newRow("enable: peer may not") << "" << "rw" << enables << true << false << 6 << false;
    QTest::newRow("enable: timer enabled") << "" << "rw" << enables << true << true << 0 << true;
    QTest::newRow("enable: systemctl fails") << "" << "rw" << fails << true << true << 3 << false;
}

void DaemonSmartTest::trimCommand()
{
    QFETCH(QString, root);
    QFETCH(QString, options);
    QFETCH(QString, systemctl);
    QFETCH(bool, enable);
    QFETCH(bool, mayChange);
    QFETCH(int, code);
    QFETCH(bool, trimEnabled);

    QTemporaryDir made;
    QVERIFY(made.isValid());
    QString rootPath = fixture(root);
    QString systemctlPath = fixture(systemctl);
    if (root.isEmpty()) {
        // A root of our own, so that the stand-in systemctl may leave its link in it.
        rootPath = made.path();
        QVERIFY(QDir(rootPath).mkpath(QStringLiteral("proc/self")));
        QFile mountinfo(rootPath + QStringLiteral("/proc/self/mountinfo"));
        QVERIFY(mountinfo.open(QIODevice::WriteOnly));
        mountinfo.write("27 1 259:2 / / " + options.toUtf8() + " - ext4 /dev/nvme0n1p2 rw\n");
        mountinfo.close();
        QVERIFY(QFile::link(fixture(QStringLiteral("machine/sys")), rootPath + QStringLiteral("/sys")));
        systemctlPath = rootPath + QStringLiteral("/systemctl");
        QVERIFY(QFile::copy(fixture(systemctl), systemctlPath));
    }
    Velmora::Message::SystemTrimCommand request;
    request.set_trimenabled(enable);
    const std::atomic_bool stop{false};
    const auto answer = TrimCommand(rootPath, systemctlPath, std::chrono::milliseconds(5000)).answer(request, mayChange, stop);
    QCOMPARE(int(answer.code()), code);
    QCOMPARE(answer.trimenabled(), trimEnabled);
}

QTEST_GUILESS_MAIN(DaemonSmartTest)
#include "tst_daemonsmart.moc"
