#include <QApplication>

#include "support/LogCapture.h"
#include "support/TestEnvironment.h"
#include "WidgetShots.h"

#include "gui/ApplicationFonts.h"
#include "gui/views/AboutWidget.h"
#include "gui/views/AdWidget.h"

#include <QBuffer>
#include <QDate>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMovie>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTextFragment>

using namespace Velmora;

namespace {

const QSize AdArea(400, 300);
const char* const LoadFailure = "Unable to load advertisement from file";

// Receives the links the program hands to the desktop.
class UrlRecorder : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> urls;

public slots:
    void open(const QUrl& url) { urls.append(url); }
};

// Registers a recorder for the schemes the views open, and removes it again.
class UrlHandlerGuard
{
public:
    explicit UrlHandlerGuard(UrlRecorder* recorder)
    {
        for (const QString& scheme : schemes())
            QDesktopServices::setUrlHandler(scheme, recorder, "open");
    }
    ~UrlHandlerGuard()
    {
        for (const QString& scheme : schemes())
            QDesktopServices::unsetUrlHandler(scheme);
    }

private:
    static QStringList schemes() { return {QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("file")}; }
};

// A GIF of two solid frames (colour indices 1 and 2 of a four-colour table). Qt reads GIF but
// cannot write it, so the test writes the format itself: every code stays 3 bits wide because a
// clear code follows each pair of literal pixels.
QByteArray makeGif(const QSize& size)
{
    QByteArray gif("GIF89a");
    auto word = [&gif](int value) {
        gif.append(char(value & 0xff));
        gif.append(char((value >> 8) & 0xff));
    };
    word(size.width());
    word(size.height());
    gif.append(char(0x91)); // global table of 4 colours
    gif.append(char(0));
    gif.append(char(0));
    const unsigned char colours[] = {0, 0, 0, 230, 30, 40, 20, 60, 220, 255, 255, 255};
    gif.append(reinterpret_cast<const char*>(colours), sizeof colours);
    gif.append("\x21\xff\x0bNETSCAPE2.0\x03\x01\x00\x00\x00", 19);

    const int pixels = size.width() * size.height();
    for (int colour = 1; colour <= 2; ++colour) {
        gif.append("\x21\xf9\x04\x00", 4);
        word(10);
        gif.append("\x00\x00", 2);
        gif.append(char(0x2c));
        word(0);
        word(0);
        word(size.width());
        word(size.height());
        gif.append(char(0));
        gif.append(char(2)); // minimum code size

        QByteArray codes;
        quint32 bits = 0;
        int bitCount = 0;
        auto put = [&](int code) {
            bits |= quint32(code) << bitCount;
            bitCount += 3;
            while (bitCount >= 8) {
                codes.append(char(bits & 0xff));
                bits >>= 8;
                bitCount -= 8;
            }
        };
        for (int i = 0; i < pixels; ++i) {
            if (i % 2 == 0)
                put(4); // clear
            put(colour);
        }
        put(5); // end
        if (bitCount > 0)
            codes.append(char(bits & 0xff));
        for (int at = 0; at < codes.size(); at += 255) {
            const QByteArray block = codes.mid(at, 255);
            gif.append(char(block.size()));
            gif.append(block);
        }
        gif.append(char(0));
    }
    gif.append(char(0x3b));
    return gif;
}

bool writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Writes a solid red picture of this size in the format its suffix names.
QString makePicture(const QDir& dir, const QString& name, const QSize& size)
{
    const QString path = dir.filePath(name);
    const QString format = QFileInfo(name).suffix().toLower();
    if (format == QLatin1String("gif")) {
        if (!writeFile(path, makeGif(size)))
            return QString();
        return path;
    }
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(230, 30, 40));
    const QByteArray qtFormat = format == QLatin1String("jpeg") ? QByteArray("JPG") : format.toLatin1().toUpper();
    return image.save(path, qtFormat.constData(), 95) ? path : QString();
}

bool near(const QColor& a, const QColor& b, int tolerance = 24)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance
        && qAbs(a.blue() - b.blue()) <= tolerance;
}

struct Link {
    QString href;
    QString text;
    QTextCharFormat format;
    int position;
};

// The links of the document, in their order, with the format of their text.
QList<Link> linksOf(const QTextDocument* document)
{
    QList<Link> links;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const QTextCharFormat format = fragment.charFormat();
            if (format.isAnchor())
                links.append({format.anchorHref(), fragment.text(), format, fragment.position() + fragment.length() / 2});
        }
    }
    return links;
}

// The notices the program bundles, in the order the about view lists them, with their terms.
const QList<QPair<QString, QString>> Notices = {
    {QStringLiteral("GOOGLE_PROTOBUF_BSD_LICENSE.txt"), QStringLiteral("(BSD-3-Clause)")},
    {QStringLiteral("OPENSSL_APACHE_LICENSE.txt"), QStringLiteral("(Apache-2.0)")},
    {QStringLiteral("QT_LGPL_LICENSE.txt"), QStringLiteral("(LGPL-3.0)")},
    {QStringLiteral("INTER_UI.txt"), QStringLiteral("(SIL OFL 1.1)")},
};

const QString ResourceDir = QStringLiteral(":/licenses/licenses/");

} // namespace

class TestGuiViews : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void adShowsFittedPicture_data();
    void adShowsFittedPicture();
    void adShowsAnimation_data();
    void adShowsAnimation();
    void adRefusesUnusableFile_data();
    void adRefusesUnusableFile();
    void adCloseButton();
    void adPressOpensLink_data();
    void adPressOpensLink();
    void adScreenshot();

    void aboutTexts();
    void aboutCloseButton();
    void aboutCopiesNotices();
    void aboutCopiesAgainOverOldCopies();
    void aboutSurvivesBlockedCopy_data();
    void aboutSurvivesBlockedCopy();
    void aboutListsNotices();
    void aboutLinkOpensCopiedNotice_data();
    void aboutLinkOpensCopiedNotice();
    void aboutScreenshot();

private:
    QString licenseDir() const;

    QTemporaryDir m_dir;
};

void TestGuiViews::initTestCase()
{
    QVERIFY(m_dir.isValid());
    Gui::registerApplicationFonts();
    QApplication::setFont(QFont(QStringLiteral("Inter UI"), 10));
}

void TestGuiViews::cleanup()
{
    // Undo what the failure cases put in the way of the copies.
    const QString dir = licenseDir();
    QFileInfo info(dir.chopped(1));
    if (info.isFile())
        QFile::remove(info.filePath());
    for (const auto& notice : Notices) {
        if (QFileInfo(dir + notice.first).isDir())
            QDir(dir + notice.first).removeRecursively();
    }
}

QString TestGuiViews::licenseDir() const
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/licenses/");
}

void TestGuiViews::adShowsFittedPicture_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("pictureSize");
    QTest::addColumn<QSize>("shownSize");

    // The widget is 400 x 300: a picture at least 381 wide or 281 high is brought to 380 or 280.
    QTest::newRow("small png") << "small.png" << QSize(100, 50) << QSize(100, 50);
    QTest::newRow("png just fits") << "fits.png" << QSize(380, 280) << QSize(380, 280);
    QTest::newRow("png a pixel too wide") << "wide1.png" << QSize(381, 100) << QSize(380, 100);
    QTest::newRow("wide png") << "wide.png" << QSize(800, 200) << QSize(380, 95);
    QTest::newRow("tall png") << "tall.png" << QSize(200, 600) << QSize(93, 280);
    QTest::newRow("big png, width then height") << "big.png" << QSize(1600, 1200) << QSize(373, 280);
    QTest::newRow("wide jpg") << "wide.jpg" << QSize(800, 200) << QSize(380, 95);
    QTest::newRow("tall jpeg") << "tall.jpeg" << QSize(150, 450) << QSize(93, 280);
    QTest::newRow("upper-case suffix") << "LOUD.JPG" << QSize(500, 100) << QSize(380, 76);
    QTest::newRow("upper-case png") << "LOUD.PNG" << QSize(60, 40) << QSize(60, 40);
}

void TestGuiViews::adShowsFittedPicture()
{
    QFETCH(QString, name);
    QFETCH(QSize, pictureSize);
    QFETCH(QSize, shownSize);
    const QString path = makePicture(QDir(m_dir.path()), name, pictureSize);
    QVERIFY(!path.isEmpty());

    Gui::AdWidget ad;
    ad.resize(AdArea);
    QSignalSpy closed(&ad, &Gui::AdWidget::closeRequest);
    LogCapture log;
    ad.showAd(path, QUrl(QStringLiteral("https://example.test/offer")));

    const auto* label = ad.findChild<QLabel*>(QStringLiteral("labelAd"));
    QVERIFY(label);
    const QPixmap shown = label->pixmap(Qt::ReturnByValue);
    QCOMPARE(shown.size(), shownSize);
    QVERIFY(!label->movie());
    const QColor centre = shown.toImage().pixelColor(shown.width() / 2, shown.height() / 2);
    QVERIFY2(near(centre, QColor(230, 30, 40)), qPrintable(colorText(centre)));
    QCOMPARE(closed.count(), 0);
    QCOMPARE(log.count(QStringLiteral("Advertisement file extension: ") + QFileInfo(name).suffix().toLower()), 1);
    QCOMPARE(log.count(QString::fromLatin1(LoadFailure)), 0);
}

void TestGuiViews::adShowsAnimation_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("pictureSize");
    QTest::addColumn<QSize>("shownSize");

    QTest::newRow("small gif") << "small.gif" << QSize(50, 40) << QSize(50, 40);
    QTest::newRow("wide gif") << "wide.gif" << QSize(800, 200) << QSize(380, 95);
    QTest::newRow("tall gif") << "tall.gif" << QSize(100, 300) << QSize(93, 280);
    QTest::newRow("big GIF") << "BIG.GIF" << QSize(1600, 1200) << QSize(373, 280);
}

void TestGuiViews::adShowsAnimation()
{
    QFETCH(QString, name);
    QFETCH(QSize, pictureSize);
    QFETCH(QSize, shownSize);
    const QString path = makePicture(QDir(m_dir.path()), name, pictureSize);
    QVERIFY(!path.isEmpty());

    Gui::AdWidget ad;
    ad.resize(AdArea);
    QSignalSpy closed(&ad, &Gui::AdWidget::closeRequest);
    ad.showAd(path, QUrl());

    const auto* label = ad.findChild<QLabel*>(QStringLiteral("labelAd"));
    QMovie* movie = label->movie();
    QVERIFY(movie);
    QVERIFY(movie->isValid());
    QCOMPARE(movie->frameCount(), 2);
    QCOMPARE(movie->state(), QMovie::Running);
    QCOMPARE(movie->scaledSize(), shownSize);
    QCOMPARE(movie->currentImage().size(), shownSize);
    QCOMPARE(closed.count(), 0);

    // A still picture after the animation replaces it; the old movie goes with it.
    QPointer<QMovie> old(movie);
    ad.showAd(makePicture(QDir(m_dir.path()), QStringLiteral("after.png"), QSize(20, 20)), QUrl());
    QVERIFY(!label->movie());
    QCOMPARE(label->pixmap(Qt::ReturnByValue).size(), QSize(20, 20));
    QVERIFY(old.isNull());
}

void TestGuiViews::adRefusesUnusableFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content"); // null: the file does not exist
    QTest::addColumn<QString>("loggedSuffix");

    QImage bmp(40, 40, QImage::Format_RGB32);
    bmp.fill(Qt::green);
    QByteArray bmpBytes;
    {
        QBuffer buffer(&bmpBytes);
        buffer.open(QIODevice::WriteOnly);
        bmp.save(&buffer, "BMP");
    }
    QByteArray truncatedPng;
    {
        QBuffer buffer(&truncatedPng);
        buffer.open(QIODevice::WriteOnly);
        bmp.save(&buffer, "PNG");
    }
    truncatedPng.truncate(truncatedPng.size() / 3);

    QTest::newRow("missing png") << "missing.png" << QByteArray() << "png";
    QTest::newRow("missing gif") << "missing.gif" << QByteArray() << "gif";
    QTest::newRow("garbage png") << "garbage.png" << QByteArray(300, 'x') << "png";
    QTest::newRow("truncated png") << "truncated.png" << truncatedPng << "png";
    QTest::newRow("empty jpg") << "empty.jpg" << QByteArray("") << "jpg";
    QTest::newRow("garbage jpeg") << "garbage.jpeg" << QByteArray("\xff\xd8\xff garbage", 12) << "jpeg";
    QTest::newRow("garbage gif") << "garbage.gif" << QByteArray("GIF89a but nothing else") << "gif";
    QTest::newRow("bmp picture") << "picture.bmp" << bmpBytes << "bmp";
    QTest::newRow("no suffix") << "picture" << bmpBytes << "";
    // The whole suffix after the first dot counts, so this name is not taken for a picture.
    QTest::newRow("two dots") << "ad.v2.png" << bmpBytes << "v2.png";
}

void TestGuiViews::adRefusesUnusableFile()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, loggedSuffix);
    const QString path = QDir(m_dir.path()).filePath(name);
    QFile::remove(path);
    if (!content.isNull())
        QVERIFY(writeFile(path, content));

    Gui::AdWidget ad;
    ad.resize(AdArea);
    // What an earlier advertisement left on screen must not stay there.
    ad.showAd(makePicture(QDir(m_dir.path()), QStringLiteral("earlier.gif"), QSize(30, 30)), QUrl());
    const auto* label = ad.findChild<QLabel*>(QStringLiteral("labelAd"));
    QVERIFY(label->movie());

    QSignalSpy closed(&ad, &Gui::AdWidget::closeRequest);
    LogCapture log;
    ad.showAd(path, QUrl(QStringLiteral("https://example.test/")));

    QCOMPARE(closed.count(), 1);
    QCOMPARE(log.count(QStringLiteral("Advertisement file extension: ") + loggedSuffix), 1);
    QCOMPARE(log.messages(Logger::Error), QStringList{QString::fromLatin1(LoadFailure)});
    QVERIFY(!label->movie());
    QVERIFY(label->pixmap(Qt::ReturnByValue).isNull());
}

void TestGuiViews::adCloseButton()
{
    UrlRecorder recorder;
    UrlHandlerGuard guard(&recorder);
    Gui::AdWidget ad;
    ad.resize(AdArea);
    ad.showAd(makePicture(QDir(m_dir.path()), QStringLiteral("close.png"), QSize(800, 600)),
        QUrl(QStringLiteral("https://example.test/offer")));
    ad.show();
    QVERIFY(QTest::qWaitForWindowExposed(&ad));

    auto* button = ad.findChild<QPushButton*>(QStringLiteral("pushButtonClose"));
    QVERIFY(button);
    QCOMPARE(button->text(), QStringLiteral("CLOSE"));
    QVERIFY(button->isVisible());
    QVERIFY(ad.rect().contains(button->geometry()));

    QSignalSpy closed(&ad, &Gui::AdWidget::closeRequest);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(closed.count(), 1);
    // The button is not part of the picture: closing does not follow the link.
    QVERIFY(recorder.urls.isEmpty());
}

void TestGuiViews::adPressOpensLink_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<bool>("onPicture");

    QTest::newRow("press on the picture") << "https://example.test/offer?id=7" << true;
    QTest::newRow("press beside the picture") << "https://example.test/offer?id=7" << false;
    QTest::newRow("plain http") << "http://example.test/a" << true;
    QTest::newRow("no link, picture") << "" << true;
    QTest::newRow("no link, beside") << "" << false;
}

void TestGuiViews::adPressOpensLink()
{
    QFETCH(QString, link);
    QFETCH(bool, onPicture);
    UrlRecorder recorder;
    UrlHandlerGuard guard(&recorder);

    Gui::AdWidget ad;
    ad.resize(AdArea);
    ad.showAd(makePicture(QDir(m_dir.path()), QStringLiteral("link.png"), QSize(100, 80)), QUrl(link));
    ad.show();
    QVERIFY(QTest::qWaitForWindowExposed(&ad));
    QSignalSpy closed(&ad, &Gui::AdWidget::closeRequest);

    auto* label = ad.findChild<QLabel*>(QStringLiteral("labelAd"));
    if (onPicture)
        QTest::mousePress(label, Qt::LeftButton, Qt::NoModifier, label->rect().center());
    else
        QTest::mousePress(&ad, Qt::LeftButton, Qt::NoModifier, QPoint(3, AdArea.height() - 3));

    if (link.isEmpty())
        QVERIFY(recorder.urls.isEmpty());
    else
        QCOMPARE(recorder.urls, QList<QUrl>{QUrl(link)});
    QCOMPARE(closed.count(), 0);
}

void TestGuiViews::adScreenshot()
{
    Gui::AdWidget ad;
    ad.resize(640, 420);
    ad.showAd(makePicture(QDir(m_dir.path()), QStringLiteral("shot.png"), QSize(900, 400)),
        QUrl(QStringLiteral("https://example.test/")));
    const QImage image = grabWidget(ad, QStringLiteral("ad-view"));
    QVERIFY(containsColor(image, QColor(0, 10, 50), QRect(0, 0, 640, 8)));
    QVERIFY(near(image.pixelColor(320, 210), QColor(230, 30, 40)));
}

void TestGuiViews::aboutTexts()
{
    Gui::AboutWidget about;
    auto text = [&about](const char* name) {
        const auto* label = about.findChild<QLabel*>(QString::fromLatin1(name));
        return label ? label->text() : QStringLiteral("<no %1>").arg(QString::fromLatin1(name));
    };
    QCOMPARE(text("labelAppName"), QStringLiteral("Kestravin 1.1.4 "));

    const QString buildDate = text("labelBuildDate");
    QVERIFY2(buildDate.startsWith(QStringLiteral("Build date ")), qPrintable(buildDate));
    const QDate date = QDate::fromString(buildDate.mid(11), Qt::ISODate);
    QVERIFY2(date.isValid(), qPrintable(buildDate));
    QVERIFY(date <= QDate::currentDate());
    QVERIFY(date >= QDate(2024, 1, 1));

    const QString copyrights = text("labelCopyrights");
    QVERIFY2(copyrights.contains(QStringLiteral("BRANTEL")), qPrintable(copyrights));
    QVERIFY2(copyrights.contains(QString::number(date.year())), qPrintable(copyrights));

    const auto* button = about.findChild<QPushButton*>(QStringLiteral("pushButtonClose"));
    QVERIFY(button);
    QCOMPARE(button->text(), QStringLiteral("CLOSE"));
    const auto* icon = about.findChild<QLabel*>(QStringLiteral("labelAppIcon"));
    QVERIFY(icon);
    QVERIFY(!icon->pixmap(Qt::ReturnByValue).isNull());
}

void TestGuiViews::aboutCloseButton()
{
    Gui::AboutWidget about;
    about.show();
    QVERIFY(QTest::qWaitForWindowExposed(&about));
    QSignalSpy closed(&about, &Gui::AboutWidget::closeRequest);
    QTest::mouseClick(about.findChild<QPushButton*>(QStringLiteral("pushButtonClose")), Qt::LeftButton);
    QCOMPARE(closed.count(), 1);
}

void TestGuiViews::aboutCopiesNotices()
{
    QDir(licenseDir()).removeRecursively();
    LogCapture log;
    Gui::AboutWidget about;

    const QString dir = about.licenseDirectory();
    QCOMPARE(dir, licenseDir());
    QVERIFY2(dir.startsWith(QDir::homePath()), qPrintable(dir)); // the suite's own home, never the real one

    QStringList bundled = QDir(ResourceDir).entryList(QDir::Files, QDir::Name);
    QStringList expected;
    for (const auto& notice : Notices)
        expected.append(notice.first);
    expected.sort();
    QCOMPARE(bundled, expected);
    QCOMPARE(QDir(dir).entryList(QDir::Files, QDir::Name), expected);

    for (const QString& name : bundled) {
        const QByteArray original = readFile(ResourceDir + name);
        QVERIFY2(original.size() > 1000, qPrintable(name));
        QCOMPARE(readFile(dir + name), original);
        QVERIFY2(QFileInfo(dir + name).permissions() & QFile::WriteOwner, qPrintable(name));
    }
    QCOMPARE(log.messages(Logger::Warning), QStringList());
}

void TestGuiViews::aboutCopiesAgainOverOldCopies()
{
    const QString dir = licenseDir();
    { Gui::AboutWidget first; }

    // An old copy, read-only and out of date, as a copy by an earlier release could be.
    const QString stale = dir + Notices.first().first;
    QVERIFY(QFile::setPermissions(stale, QFile::ReadOwner | QFile::WriteOwner));
    QVERIFY(writeFile(stale, "outdated notice"));
    QVERIFY(QFile::setPermissions(stale, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));

    LogCapture log;
    Gui::AboutWidget second;
    Gui::AboutWidget third;
    for (const auto& notice : Notices)
        QCOMPARE(readFile(dir + notice.first), readFile(ResourceDir + notice.first));
    QCOMPARE(log.messages(Logger::Warning), QStringList());
}

void TestGuiViews::aboutSurvivesBlockedCopy_data()
{
    QTest::addColumn<QString>("blocked"); // a notice, or empty for the folder itself
    QTest::addColumn<QString>("warning");

    QTest::newRow("a folder where a notice goes") << "QT_LGPL_LICENSE.txt" << "Unable to copy license file QT_LGPL_LICENSE.txt";
    QTest::newRow("a file where the folder goes") << "" << "Unable to create license directory";
}

void TestGuiViews::aboutSurvivesBlockedCopy()
{
    QFETCH(QString, blocked);
    QFETCH(QString, warning);
    const QString dir = licenseDir();
    QDir(dir).removeRecursively();
    if (blocked.isEmpty()) {
        QVERIFY(QDir().mkpath(QFileInfo(dir.chopped(1)).path()));
        QVERIFY(writeFile(dir.chopped(1), "in the way"));
    } else {
        QVERIFY(QDir().mkpath(dir + blocked));
    }

    LogCapture log;
    Gui::AboutWidget about;
    QVERIFY2(log.countStartingWith(warning) >= 1, qPrintable(log.messages().join(QLatin1Char('\n'))));

    // The other notices are copied all the same, and the view still lists every notice.
    for (const auto& notice : Notices) {
        if (!blocked.isEmpty() && notice.first != blocked)
            QCOMPARE(readFile(dir + notice.first), readFile(ResourceDir + notice.first));
    }
    const auto* browser = about.findChild<QTextBrowser*>(QStringLiteral("textBrowserLicenses"));
    QCOMPARE(linksOf(browser->document()).size(), Notices.size());
}

void TestGuiViews::aboutListsNotices()
{
    Gui::AboutWidget about;
    const auto* browser = about.findChild<QTextBrowser*>(QStringLiteral("textBrowserLicenses"));
    QVERIFY(browser);
    const QList<Link> links = linksOf(browser->document());
    QCOMPARE(links.size(), Notices.size());
    for (int i = 0; i < links.size(); ++i) {
        const Link& link = links.at(i);
        const QUrl url(link.href);
        QCOMPARE(url, QUrl::fromLocalFile(about.licenseDirectory() + Notices.at(i).first));
        QVERIFY2(QFileInfo::exists(url.toLocalFile()), qPrintable(link.href));
        QCOMPARE(link.text, Notices.at(i).second);
        QCOMPARE(link.format.fontPointSize(), 10.5);
        QVERIFY(link.format.fontUnderline());
        QCOMPARE(link.format.foreground().color(), QColor(QStringLiteral("#007af4")));
    }
    // One line a notice.
    QCOMPARE(browser->document()->blockCount(), Notices.size());
}

void TestGuiViews::aboutLinkOpensCopiedNotice_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < Notices.size(); ++i)
        QTest::newRow(qPrintable(Notices.at(i).first)) << i;
}

void TestGuiViews::aboutLinkOpensCopiedNotice()
{
    QFETCH(int, index);
    UrlRecorder recorder;
    UrlHandlerGuard guard(&recorder);
    Gui::AboutWidget about;
    about.resize(700, 520);
    about.show();
    QVERIFY(QTest::qWaitForWindowExposed(&about));

    auto* browser = about.findChild<QTextBrowser*>(QStringLiteral("textBrowserLicenses"));
    const QString html = browser->toHtml();
    const Link link = linksOf(browser->document()).value(index);
    QTextCursor cursor(browser->document());
    cursor.setPosition(link.position);
    const QPoint point = browser->cursorRect(cursor).center();
    QCOMPARE(browser->anchorAt(point), link.href);
    QTest::mouseClick(browser->viewport(), Qt::LeftButton, Qt::NoModifier, point);

    QCOMPARE(recorder.urls, QList<QUrl>{QUrl::fromLocalFile(about.licenseDirectory() + Notices.at(index).first)});
    // The view stays on its list instead of loading the notice itself.
    QVERIFY(browser->source().isEmpty());
    QCOMPARE(browser->toHtml(), html);
}

void TestGuiViews::aboutScreenshot()
{
    Gui::AboutWidget about;
    about.resize(about.sizeHint());
    const QImage image = grabWidget(about, QStringLiteral("about-view"));
    QVERIFY(containsColor(image, QColor(0, 10, 50), QRect(0, 0, image.width(), 8)));
    const auto* browser = about.findChild<QTextBrowser*>(QStringLiteral("textBrowserLicenses"));
    QVERIFY(containsColor(image, QColor(0, 36, 94), browser->geometry()));
    QVERIFY(containsColor(image, QColor(0, 122, 244), browser->geometry()));
}

KESTRAVIN_GUI_TEST_MAIN(TestGuiViews)
#include "tst_gui_views.moc"
