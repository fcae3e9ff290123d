#include "gui/pages/SupportFormPage.h"

#include "logger/Logger.h"
#include "support/SupportCaptcha.h"
#include "system/Drive.h"
#include "system/SupportedDrivesManager.h"
#include "system/System.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextCursor>
#include <QTimeLine>
#include <QTimer>

#include <cmath>

namespace Velmora::Gui {

namespace {

// The first entry of the drive list stands for "nothing chosen yet".
constexpr int NoDrive = -1;

// An empty field is framed red, a filled one by an invisible frame of the same width. The sheet is
// only set when it changes: every keystroke lands here, and setting a sheet polishes the widget anew.
void setFrame(QWidget* field, const QString& sheet)
{
    if (field->styleSheet() != sheet)
        field->setStyleSheet(sheet);
}

void showFilled(QLineEdit* field, bool filled)
{
    setFrame(field, filled ? QStringLiteral("QLineEdit {border: 1px solid transparent;}")
                           : QStringLiteral("QLineEdit {border: 1px solid red;}"));
}

void showFilled(QComboBox* field, bool filled)
{
    setFrame(field, filled ? QStringLiteral("QComboBox {border: 1px solid transparent;}")
                           : QStringLiteral("QComboBox {border: 1px solid red;}"));
}

void showFilled(QPlainTextEdit* field, bool filled)
{
    setFrame(field, filled ? QStringLiteral("QPlainTextEdit {border: 1px solid transparent;}")
                           : QStringLiteral("QPlainTextEdit {border: 1px solid red;}"));
}

// Blanks alone say nothing to the people who read the ticket: they count as empty.
bool isBlank(const QString& text)
{
    return text.trimmed().isEmpty();
}

} // namespace

SupportFormPage::SupportFormPage(Support::SupportManager* supportManager, Support::SupportCaptcha* supportCaptcha,
    System::System* system, QWidget* parent)
    : Page(parent)
    , scrollSyncTimer(new QTimer(this))
    , scrollBarTimeLine(new QTimeLine(ScrollGlideMs, this))
    , supportManager(supportManager)
    , supportCaptcha(supportCaptcha)
    , system(system)
    , captchaWait(new QTimer(this))
{
    buildForm();

    verticalScrollBar->hide();
    verticalScrollBar->setRange(0, ScrollScale);
    verticalScrollBar->setPageStep(ScrollScale / 10);
    scrollSyncTimer->setSingleShot(true);
    scrollSyncTimer->setInterval(0);
    connect(scrollBarTimeLine, &QTimeLine::frameChanged, verticalScrollBar, &QScrollBar::setValue);
    connect(scrollSyncTimer, &QTimer::timeout, this, &SupportFormPage::updateVerticalScrollBar);
    connectScrollSync();
    connect(verticalScrollBar, &QScrollBar::sliderMoved, this, &SupportFormPage::on_verticalScrollBar_sliderMoved);
    connect(verticalScrollBar, &QScrollBar::sliderPressed, this, &SupportFormPage::scrollBarStartTracking);
    connect(verticalScrollBar, &QScrollBar::sliderReleased, this, &SupportFormPage::scrollBarStopTracking);
    // A click beside the handle or the wheel over the bar moves the text as a drag does.
    connect(verticalScrollBar, &QScrollBar::actionTriggered, this,
        [this] { on_verticalScrollBar_sliderMoved(verticalScrollBar->sliderPosition()); });

    connect(supportFormMessage, &QPlainTextEdit::textChanged, this, &SupportFormPage::onFormTextChanged);
    connect(lineEdit_email, &QLineEdit::textEdited, this, [this](const QString& text) { showFilled(lineEdit_email, !isBlank(text)); });
    connect(lineEdit_captcha, &QLineEdit::textEdited, this,
        [this](const QString& text) { showFilled(lineEdit_captcha, !isBlank(text)); });
    connect(comboBox_driveSelect, qOverload<int>(&QComboBox::currentIndexChanged), this, &SupportFormPage::showDriveFrame);
    connect(pushButton_contactSupport, &QPushButton::clicked, this, &SupportFormPage::onSupportRequest);
    connect(pushButton_generateCaptcha, &QPushButton::clicked, supportCaptcha, &Support::SupportCaptcha::requestCaptchaImage);
    connect(pushButton_generateCaptcha, &QPushButton::clicked, captchaWait, qOverload<>(&QTimer::start));

    connect(supportManager, &Support::SupportManager::statusChanged, this, &SupportFormPage::onSupportRequestStatusUpdate);
    connect(supportCaptcha, &Support::SupportCaptcha::captchaAvailable, this, &SupportFormPage::onCaptchaAvailable);
    captchaWait->setSingleShot(true);
    captchaWait->setInterval(CaptchaWaitMs);
    connect(captchaWait, &QTimer::timeout, this, &SupportFormPage::onCaptchaWaitExpired);

    connect(system, &System::System::driveAdded, this, &SupportFormPage::onDriveAdded);
    connect(system, &System::System::driveRemoved, this, &SupportFormPage::onDriveRemoved);
    rebuildDriveList();

    onSupportRequestStatusUpdate(supportManager->status());
    // The page is made when the user first opens it: that is when a picture is wanted.
    requestCaptcha();
}

void SupportFormPage::connectScrollSync()
{
    QScrollBar* inner = supportFormMessage->verticalScrollBar();
    auto* timer = scrollSyncTimer;
    scrollSyncSources = {
        connect(inner, &QScrollBar::rangeChanged, timer, qOverload<>(&QTimer::start)),
        connect(inner, &QScrollBar::valueChanged, timer, qOverload<>(&QTimer::start)),
        connect(supportFormMessage, &QPlainTextEdit::cursorPositionChanged, timer, qOverload<>(&QTimer::start)),
    };
}

void SupportFormPage::onFormTextChanged()
{
    // One less than the document's count: that counts the closing paragraph separator too.
    if (supportFormMessage->document()->characterCount() - 1 > MaxMessageLength) {
        int keep = MaxMessageLength;
        // Never keep half of a character that needs two code units.
        if (supportFormMessage->document()->characterAt(keep - 1).isHighSurrogate())
            --keep;
        // Cut through a cursor rather than by setting the text anew, so that undo brings the paste back.
        QTextCursor cut(supportFormMessage->document());
        cut.setPosition(keep);
        cut.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
        cut.removeSelectedText();
        QTextCursor end = supportFormMessage->textCursor();
        end.movePosition(QTextCursor::End);
        supportFormMessage->setTextCursor(end);
    }
    showFilled(supportFormMessage, !isBlank(supportFormMessage->toPlainText()));
}

void SupportFormPage::on_verticalScrollBar_sliderMoved(int position)
{
    QScrollBar* inner = supportFormMessage->verticalScrollBar();
    const double span = inner->maximum() - inner->minimum();
    inner->setValue(int(std::lround(span * position / ScrollScale)) + inner->minimum());
}

void SupportFormPage::updateVerticalScrollBar()
{
    const QScrollBar* inner = supportFormMessage->verticalScrollBar();
    const int minimum = inner->minimum();
    const int maximum = inner->maximum();
    if (qFuzzyCompare(double(minimum), double(maximum))) {
        verticalScrollBar->hide();
        return;
    }
    verticalScrollBar->show();
    const int target = int(std::lround(double(inner->value() - minimum) / (maximum - minimum) * ScrollScale));
    // Every keystroke moves the cursor and lands here; restarting a glide that already heads for the
    // same place would hold the handle still for as long as the user types.
    if (scrollBarTimeLine->state() == QTimeLine::Running && scrollBarTimeLine->endFrame() == target)
        return;
    scrollBarTimeLine->stop();
    scrollBarTimeLine->setStartFrame(verticalScrollBar->value());
    scrollBarTimeLine->setEndFrame(target);
    scrollBarTimeLine->start();
}

void SupportFormPage::scrollBarStartTracking()
{
    // The glide would otherwise pull the handle back to where the text was a moment ago.
    for (const QMetaObject::Connection& source : qAsConst(scrollSyncSources))
        disconnect(source);
    scrollSyncSources.clear();
    scrollBarTimeLine->stop();
}

void SupportFormPage::scrollBarStopTracking()
{
    connectScrollSync();
    updateVerticalScrollBar();
}

void SupportFormPage::onSupportRequest()
{
    const QString message = supportFormMessage->toPlainText();
    const QString email = lineEdit_email->text().trimmed();
    const QString captcha = lineEdit_captcha->text().trimmed();
    const System::Drive* drive = system->drive(comboBox_driveSelect->currentData().toInt());

    if (drive && !isBlank(message) && !email.isEmpty() && !captcha.isEmpty()) {
        supportManager->createSupportTicket(message, email, drive->serialNumber(), captcha);
        lineEdit_captcha->clear();
        return;
    }
    statusLabel->setText(tr("FIELDS MUST CONTAIN CORRECT DATA"));
    // Only what is wrong turns red; a field already marked keeps its mark.
    if (isBlank(message))
        showFilled(supportFormMessage, false);
    if (email.isEmpty())
        showFilled(lineEdit_email, false);
    if (captcha.isEmpty())
        showFilled(lineEdit_captcha, false);
    if (!drive)
        showFilled(comboBox_driveSelect, false);
}

QString SupportFormPage::statusText(Support::SupportStatus status)
{
    switch (status) {
    case Support::CopyingServiceLogs:
    case Support::CollectingReports:
    case Support::PostingTicket:
        return tr("SENDING REQUEST");
    case Support::Accepted:
        return tr("SUPPORT REQUEST SENT");
    case Support::Rejected:
        return tr("SUPPORT REQUEST REJECTED");
    case Support::ConnectionFailed:
        return tr("UNABLE TO CONNECT TO SERVER");
    case Support::TimedOut:
        return tr("UNABLE TO COMPLETE OPERATION");
    case Support::InvalidCaptcha:
        return tr("INVALID CAPTCHA");
    case Support::Idle:
        break;
    }
    return QString();
}

void SupportFormPage::onSupportRequestStatusUpdate(Support::SupportStatus status)
{
    statusLabel->setText(statusText(status));
    // The manager takes one ticket at a time; a second press would only be logged and dropped.
    const bool running = status == Support::CopyingServiceLogs || status == Support::CollectingReports
        || status == Support::PostingTicket;
    pushButton_contactSupport->setEnabled(!running);
    if (status == Support::Accepted || status == Support::Rejected || status == Support::InvalidCaptcha)
        requestCaptcha();
}

void SupportFormPage::requestCaptcha()
{
    supportCaptcha->requestCaptchaImage();
    captchaWait->start();
}

void SupportFormPage::onCaptchaAvailable(QString filePath)
{
    captchaWait->stop();
    const QPixmap picture(filePath);
    if (picture.isNull()) {
        Logger::warning(QString(), QStringLiteral("Captcha file is not a picture: %1").arg(filePath));
        label_captcha->setText(tr("CAPTCHA NOT AVAILABLE"));
        return;
    }
    label_captcha->setPixmap(picture.scaled(label_captcha->size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

void SupportFormPage::onCaptchaWaitExpired()
{
    // A picture already shown stays: it may still be the one the back-end expects.
    if (!label_captcha->pixmap(Qt::ReturnByValue).isNull())
        return;
    label_captcha->setText(tr("CAPTCHA NOT AVAILABLE"));
}

void SupportFormPage::onDriveAdded(int)
{
    rebuildDriveList();
}

void SupportFormPage::onDriveRemoved(int)
{
    rebuildDriveList();
}

void SupportFormPage::rebuildDriveList()
{
    const QVariant chosenData = comboBox_driveSelect->currentData();
    const int chosen = chosenData.isValid() ? chosenData.toInt() : NoDrive;
    {
        const QSignalBlocker blocker(comboBox_driveSelect);
        comboBox_driveSelect->clear();
        comboBox_driveSelect->insertItem(0, tr("CHOOSE YOUR DRIVE"), NoDrive);
        for (int id : system->driveIds()) {
            const System::Drive* drive = system->drive(id);
            // Only the maker's own drives can be the subject of a ticket.
            if (drive && System::SupportedDrivesManager::isSupportedDrive(*drive))
                comboBox_driveSelect->addItem(drive->displayText(true), id);
        }
        // A drive that comes or goes elsewhere does not undo the user's choice.
        comboBox_driveSelect->setCurrentIndex(qMax(0, comboBox_driveSelect->findData(chosen)));
    }
    if (chosen != NoDrive && comboBox_driveSelect->currentData().toInt() != chosen)
        showDriveFrame();
}

void SupportFormPage::showDriveFrame()
{
    showFilled(comboBox_driveSelect, system->drive(comboBox_driveSelect->currentData().toInt()) != nullptr);
}

} // namespace Velmora::Gui
