#include "application/Application.h"
#include "support/LogCapture.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

static QStringList marks(const QString& text) // the placeholders and line breaks, kept by a translation
{
    QStringList found;
    for (auto it = QRegularExpression(QStringLiteral("%\\d+|\\n")).globalMatch(text); it.hasNext();)
        found << it.next().captured();
    found.sort();
    return found;
}

class TestTranslations : public QObject
{
    Q_OBJECT

private slots:
    // Each source file is first brought up to date with the code, so that a text it lacks shows up as unfinished.
    void everyTextIsTranslated()
    {
        static const QRegularExpression message(
            QStringLiteral("<source>(.*?)</source>.*?<translation( type=\"\\w+\")?>(.*?)</"), QRegularExpression::DotMatchesEverythingOption);
        QTemporaryDir dir;
        for (const QString language : {"pl", "ru", "uk"}) {
            QFile ts(dir.filePath(QStringLiteral("KESTRAVIN_%1.ts").arg(language)));
            QVERIFY(QFile::copy(QStringLiteral(KESTRAVIN_TS_DIR "/KESTRAVIN_%1.ts").arg(language), ts.fileName()));
            QCOMPARE(QProcess::execute(QStringLiteral(KESTRAVIN_LUPDATE),
                         {"-silent", KESTRAVIN_SOURCE_DIR, "-ts", ts.fileName(), "-no-obsolete", "-locations", "none"}), 0);
            QVERIFY(ts.open(QIODevice::ReadOnly));
            int messages = 0;
            for (auto it = message.globalMatch(QString::fromUtf8(ts.readAll())); it.hasNext(); ++messages) {
                const QRegularExpressionMatch entry = it.next();
                const QString source = entry.captured(1), translation = entry.captured(3);
                QVERIFY2(entry.capturedLength(2) == 0 && !translation.trimmed().isEmpty() && marks(translation) == marks(source),
                    qPrintable(language + QLatin1String(": ") + source + QLatin1String(" -> ") + translation));
            }
            QVERIFY(messages > 100);
        }
    }

    void loadsOnlyAUsableFile_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QByteArray>("content"); // null: no file
        QTest::addColumn<bool>("usable");
        QByteArray qm;
        for (const char* language : {"pl", "ru", "uk"}) {
            QFile file(QStringLiteral(KESTRAVIN_QM_DIR "/KESTRAVIN_%1.qm").arg(QLatin1String(language)));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QTest::newRow(language) << QString::fromLatin1(language) << (qm = file.readAll()) << true;
        }
        // After a usable one: a file that fails to load takes the installed translation away.
        QTest::newRow("not a translation") << "de" << QByteArray("KESTRAVIN") << false;
        QTest::newRow("cut short") << "fr" << qm.left(qm.size() / 2) << false;
        QTest::newRow("missing") << "it" << QByteArray() << false;
    }

    void loadsOnlyAUsableFile()
    {
        QFETCH(QString, language);
        QFETCH(QByteArray, content);
        QFETCH(bool, usable);
        QFile file(QCoreApplication::applicationDirPath() + QStringLiteral("/translations/KESTRAVIN_%1.qm").arg(language));
        QVERIFY(content.isNull() || (file.open(QIODevice::WriteOnly) && file.write(content) == content.size()));
        file.close();

        LogCapture log;
        qobject_cast<Velmora::Application::Application*>(qApp)->loadTranslation(language);
        file.remove();
        QCOMPARE(log.count(QStringLiteral("Loading translation: ") + file.fileName()), 1);
        QCOMPARE(log.count(QStringLiteral("Unable to load translations from ") + file.fileName()), usable ? 0 : 1);
        QCOMPARE(QCoreApplication::translate("Velmora::Application::Application", "Quit") != QLatin1String("Quit"), usable);
    }
};

int main(int argc, char* argv[])
{
    Velmora::Logger::setConsoleEnabled(false);
    Velmora::Application::Application app(argc, argv);
    TestTranslations test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_translations.moc"
