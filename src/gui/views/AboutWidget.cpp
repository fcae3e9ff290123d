#include "gui/views/AboutWidget.h"

#include "gui/GuiResources.h"

#include "logger/Logger.h"
#include "update/ApplicationUpdate.h"

#include <QDate>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QStandardPaths>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace Velmora::Gui {

namespace {

const char* const Stylesheet = R"(
#AboutWidget { background-color: rgb(0, 10, 50); }
#AboutWidget QLabel { color: rgb(255, 255, 255); font: 13px "Inter UI"; }
#AboutWidget #labelAppName { font: 22px "Inter UI Black"; }
#textBrowserLicenses {
    background-color: rgb(0, 36, 94); color: rgb(255, 255, 255); border: none;
    font: 13px "Inter UI"; padding: 8px;
}
#pushButtonClose {
    color: rgb(255, 255, 255); background-color: rgb(0, 36, 94); border: 1px solid rgb(255, 255, 255);
    font: 13px "Inter UI Semi Bold"; padding: 6px 18px;
}
#pushButtonClose:hover { background-color: rgb(0, 34, 89); }
)";

const char* const LicenseResourceDir = ":/licenses/licenses";

// One line of the view for each notice, in this order.
struct Notice {
    const char* component;
    const char* file;
    const char* terms;
};

const Notice Notices[] = {
    {"Protocol Buffers", "GOOGLE_PROTOBUF_BSD_LICENSE.txt", "BSD-3-Clause"},
    {"OpenSSL", "OPENSSL_APACHE_LICENSE.txt", "Apache-2.0"},
    {"Qt 5", "QT_LGPL_LICENSE.txt", "LGPL-3.0"},
    {"Inter UI", "INTER_UI.txt", "SIL OFL 1.1"},
};

// The day this file was compiled. The compiler's own stamp needs no build-system support and
// changes whenever the about view is rebuilt.
QDate buildDate()
{
    return QLocale::c().toDate(QString::fromLatin1(__DATE__).simplified(), QStringLiteral("MMM d yyyy"));
}

QString versionText()
{
    return QString::fromLatin1(Update::ApplicationUpdate::ApplicationVersion) + QLatin1Char('-');
}

} // namespace

AboutWidget::AboutWidget(QWidget* parent)
    : QWidget(parent)
    , licenseDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/licenses/"))
{
    initGuiResources();
    buildForm();

    labelAppName->setText(QStringLiteral("Kestravin ") + versionText().replace(QLatin1Char('-'), QLatin1Char(' ')));
    const QDate built = buildDate();
    labelBuildDate->setText(tr("Build date ")
        + (built.isValid() ? built.toString(Qt::ISODate) : QString::fromLatin1(__DATE__)));
    labelCopyrights->setText(tr("COPYRIGHT \u00a9 %1 BRANTEL. ALL RIGHTS RESERVED.")
                                 .arg(built.isValid() ? built.year() : QDate::currentDate().year()));

    connect(pushButtonClose, &QPushButton::clicked, this, &AboutWidget::closeRequest);
    // The notices are local files, which a text browser would open inside itself: hand every
    // activated link to the desktop instead.
    textBrowserLicenses->setOpenExternalLinks(true);
    textBrowserLicenses->setOpenLinks(false);
    connect(textBrowserLicenses, &QTextBrowser::anchorClicked, this, &AboutWidget::onLicenseLinkActivated);

    copyLicenses();
    fillLicenses();
}

void AboutWidget::buildForm()
{
    setObjectName(QStringLiteral("AboutWidget"));
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(QString::fromUtf8(Stylesheet));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 28, 32, 24);
    layout->setSpacing(16);

    auto* head = new QHBoxLayout;
    head->setSpacing(20);
    labelAppIcon = new QLabel(this);
    labelAppIcon->setObjectName(QStringLiteral("labelAppIcon"));
    labelAppIcon->setPixmap(QIcon(QStringLiteral(":/tray/icon")).pixmap(QSize(72, 72)));
    labelAppIcon->setFixedSize(72, 72);
    head->addWidget(labelAppIcon, 0, Qt::AlignTop);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(6);
    labelAppName = new QLabel(this);
    labelAppName->setObjectName(QStringLiteral("labelAppName"));
    labelBuildDate = new QLabel(this);
    labelBuildDate->setObjectName(QStringLiteral("labelBuildDate"));
    labelCopyrights = new QLabel(this);
    labelCopyrights->setObjectName(QStringLiteral("labelCopyrights"));
    texts->addWidget(labelAppName);
    texts->addWidget(labelBuildDate);
    texts->addWidget(labelCopyrights);
    texts->addStretch(1);
    head->addLayout(texts, 1);
    layout->addLayout(head);

    textBrowserLicenses = new QTextBrowser(this);
    textBrowserLicenses->setObjectName(QStringLiteral("textBrowserLicenses"));
    textBrowserLicenses->setMinimumSize(560, 180);
    layout->addWidget(textBrowserLicenses, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    pushButtonClose = new QPushButton(tr("CLOSE"), this);
    pushButtonClose->setObjectName(QStringLiteral("pushButtonClose"));
    pushButtonClose->setCursor(Qt::PointingHandCursor);
    buttons->addWidget(pushButtonClose);
    layout->addLayout(buttons);
}

void AboutWidget::copyLicenses()
{
    if (!QDir().mkpath(licenseDir))
        Logger::warning(QString(), QStringLiteral("Unable to create license directory: %1").arg(licenseDir));

    const QFileInfoList sources = QDir(QString::fromLatin1(LicenseResourceDir)).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo& source : sources) {
        const QString target = licenseDir + source.fileName();
        // Copies of an earlier showing are replaced. Files copied out of the resources are
        // read-only, so each is made writable first.
        const QFileInfo existing(target);
        if (existing.exists() || existing.isSymLink()) {
            QFile::setPermissions(target, existing.permissions() | QFile::WriteOwner | QFile::WriteUser);
            QFile::remove(target);
        }
        QFile file(source.filePath());
        if (!file.copy(target)) {
            Logger::warning(QString(), QStringLiteral("Unable to copy license file %1 to %2: %3")
                                           .arg(source.fileName(), target, file.errorString()));
            continue;
        }
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser
                | QFile::ReadGroup | QFile::ReadOther);
    }
}

void AboutWidget::fillLicenses()
{
    const QString line = QStringLiteral(
        "<p>%1 <a href=\"%2\"><span style=\"font-size:10.5pt; text-decoration: underline; color:#007af4;\">"
        "(%3)</span></a></p>");
    QString html;
    for (const Notice& notice : Notices) {
        const QString link = QUrl::fromLocalFile(licenseDir + QLatin1String(notice.file)).toString(QUrl::FullyEncoded);
        html += line.arg(tr("This program uses %1, licensed under").arg(QLatin1String(notice.component)).toHtmlEscaped(),
            link.toHtmlEscaped(), QLatin1String(notice.terms));
    }
    textBrowserLicenses->setHtml(html);
}

void AboutWidget::onLicenseLinkActivated(const QUrl& link)
{
    QDesktopServices::openUrl(link);
}

} // namespace Velmora::Gui
