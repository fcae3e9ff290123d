#include "platform/XdgAutostart.h"
#include "support/TestEnvironment.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class TestAutostart : public QObject
{
    Q_OBJECT

private slots:
    void writesAndReadsTheEntry();
};

void TestAutostart::writesAndReadsTheEntry()
{
    QTemporaryDir dir;
    const QString entry = dir.filePath(QStringLiteral("autostart/KESTRAVIN.desktop"));
    Velmora::Platform::XdgAutostart autostart(entry, QStringLiteral("/opt/kestravin/kestravin"), QStringLiteral("KESTRAVIN"));
    QVERIFY(!autostart.isEnabled());
    autostart.setEnabled(true);
    QVERIFY(autostart.isEnabled());
    QFile file(entry);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("\nExec=\"/opt/kestravin/kestravin\" -minimized\n"));
    file.close();

    // The program moved since the entry was written.
    Velmora::Platform::XdgAutostart moved(entry, QStringLiteral("/usr/bin/kestravin"), QStringLiteral("KESTRAVIN"));
    QVERIFY(!moved.isEnabled());

    autostart.setEnabled(false);
    QVERIFY(!QFile::exists(entry));
    QVERIFY(!autostart.isEnabled());
}

KESTRAVIN_TEST_SUITE(TestAutostart)
#include "tst_autostart.moc"
