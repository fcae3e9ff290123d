// The widgets of the contact form and their arrangement; what they do is the business of
// SupportFormPage.cpp.
#include "gui/pages/SupportFormPage.h"

#include "gui/pages/PageStyle.h"
#include "gui/widgets/TitleLabel.h"

#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

namespace Velmora::Gui {

namespace {

// The text fields take their colours from the palette, not from a "color" rule: such a rule would
// also paint the placeholders in full white.
// Fields start with a transparent frame, the same as a filled one, so that only a red frame stands
// out. The border widths match those of the validation stylesheets: a frame that changes colour
// must not move the text.
const char* const Stylesheet = R"(
#titleLabel { font: 28px "Inter UI Black"; }
#yourSSDLabel, #yourEmailLabel, #label { color: rgb(140, 150, 195); font: 13px "Inter UI Semi Bold"; }
#regulatoryLabel { color: rgb(140, 150, 195); font: 11px "Inter UI"; }
#statusLabel { font: 14px "Inter UI Semi Bold"; }
#label_captcha { background-color: rgb(0, 2, 63); color: rgb(140, 150, 195); font: 12px "Inter UI"; }
QPlainTextEdit, QLineEdit, QComboBox {
    background-color: rgb(0, 2, 63); border: 1px solid transparent;
    selection-background-color: rgb(0, 59, 114); font: 14px "Inter UI";
}
QComboBox { color: rgb(255, 255, 255); }
QPlainTextEdit { padding: 8px; }
QLineEdit, QComboBox { padding: 0 12px; min-height: 38px; }
QComboBox:hover { background-color: rgb(0, 34, 89); }
QComboBox QAbstractItemView {
    background-color: rgb(0, 2, 63); color: rgb(255, 255, 255); selection-background-color: rgb(0, 36, 94);
    outline: none; border: 1px solid rgb(0, 36, 94);
}
#verticalScrollBar { background: rgb(0, 2, 63); width: 8px; margin: 0; border: none; }
#verticalScrollBar::handle:vertical {
    background: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 rgb(0, 225, 255), stop: 1 rgb(160, 3, 218));
    min-height: 32px; border-radius: 4px;
}
#verticalScrollBar::add-line, #verticalScrollBar::sub-line { height: 0; }
#verticalScrollBar::add-page, #verticalScrollBar::sub-page { background: none; }
)";

constexpr int CaptionWidth = 104;
// The back-end's pictures are about this size; anything else is stretched to it.
constexpr int CaptchaWidth = 164;
constexpr int CaptchaHeight = 52;

void setTextColors(QWidget* field)
{
    QPalette palette = field->palette();
    palette.setColor(QPalette::Text, QColor(255, 255, 255));
    palette.setColor(QPalette::PlaceholderText, QColor(110, 122, 170));
    field->setPalette(palette);
}

QLineEdit* newLineEdit(const QString& objectName, const QString& placeholder, QWidget* parent)
{
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(objectName);
    edit->setPlaceholderText(placeholder);
    return edit;
}

} // namespace

void SupportFormPage::buildForm()
{
    setObjectName(QStringLiteral("SupportFormPage"));
    setStyleSheet(PageStyle::stylesheet() + QString::fromUtf8(Stylesheet));

    titleLabel = new TitleLabel(tr("CONTACT FORM"), this);
    titleLabel->setObjectName(QStringLiteral("titleLabel"));

    QFrame* messagePanel = PageStyle::panel(QStringLiteral("messagePanel"), this);
    supportFormMessage = new QPlainTextEdit(messagePanel);
    supportFormMessage->setObjectName(QStringLiteral("supportFormMessage"));
    supportFormMessage->setPlaceholderText(tr("YOUR TEXT"));
    // The bar beside the field mirrors this one; the field's own bar only keeps the numbers.
    supportFormMessage->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    supportFormMessage->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalScrollBar = new QScrollBar(Qt::Vertical, messagePanel);
    verticalScrollBar->setObjectName(QStringLiteral("verticalScrollBar"));
    auto* messageLayout = new QHBoxLayout(messagePanel);
    messageLayout->setContentsMargins(16, 16, 12, 16);
    messageLayout->setSpacing(8);
    messageLayout->addWidget(supportFormMessage, 1);
    messageLayout->addWidget(verticalScrollBar);

    QFrame* fieldsPanel = PageStyle::panel(QStringLiteral("fieldsPanel"), this);
    yourSSDLabel = PageStyle::label(QStringLiteral("yourSSDLabel"), tr("YOUR SSD:"), fieldsPanel);
    comboBox_driveSelect = new QComboBox(fieldsPanel);
    comboBox_driveSelect->setObjectName(QStringLiteral("comboBox_driveSelect"));
    comboBox_driveSelect->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    comboBox_driveSelect->setMinimumContentsLength(12);
    yourEmailLabel = PageStyle::label(QStringLiteral("yourEmailLabel"), tr("YOUR EMAIL:"), fieldsPanel);
    lineEdit_email = newLineEdit(QStringLiteral("lineEdit_email"), tr("TYPE YOUR EMAIL"), fieldsPanel);
    label = PageStyle::label(QStringLiteral("label"), tr("CAPTCHA:"), fieldsPanel);
    label_captcha = PageStyle::label(QStringLiteral("label_captcha"), tr("LOADING..."), fieldsPanel);
    label_captcha->setFixedSize(CaptchaWidth, CaptchaHeight);
    label_captcha->setAlignment(Qt::AlignCenter);
    label_captcha->setWordWrap(true);
    pushButton_generateCaptcha = PageStyle::button(QStringLiteral("pushButton_generateCaptcha"), tr("GENERATE"), fieldsPanel);
    lineEdit_captcha = newLineEdit(QStringLiteral("lineEdit_captcha"), tr("TYPE CAPTCHA"), fieldsPanel);
    regulatoryLabel = PageStyle::label(QStringLiteral("regulatoryLabel"),
        tr("BY SENDING THIS FORM YOU AGREE THAT BRANTEL PROCESSES THE DATA IT CARRIES: YOUR E-MAIL ADDRESS, YOUR "
           "MESSAGE, THE SERIAL NUMBER OF THE CHOSEN DRIVE AND THE VERSION OF THIS PROGRAM. THEY ARE USED ONLY TO "
           "ANSWER YOUR REQUEST, ARE NOT PASSED ON TO THIRD PARTIES AND ARE DELETED WHEN YOUR CASE IS CLOSED. YOU MAY "
           "ASK AT ANY TIME TO SEE, CORRECT OR DELETE THEM."),
        fieldsPanel);
    regulatoryLabel->setWordWrap(true);
    for (QWidget* field : std::initializer_list<QWidget*>{supportFormMessage, lineEdit_email, lineEdit_captcha})
        setTextColors(field);

    // A floor, not a fixed width: the column grows with the longest caption of the language.
    for (QLabel* caption : {yourSSDLabel, yourEmailLabel, label})
        caption->setMinimumWidth(CaptionWidth);
    auto* fieldsLayout = new QGridLayout(fieldsPanel);
    fieldsLayout->setContentsMargins(24, 20, 24, 20);
    fieldsLayout->setHorizontalSpacing(12);
    fieldsLayout->setVerticalSpacing(14);
    fieldsLayout->addWidget(yourSSDLabel, 0, 0);
    fieldsLayout->addWidget(comboBox_driveSelect, 0, 1, 1, 2);
    fieldsLayout->addWidget(yourEmailLabel, 1, 0);
    fieldsLayout->addWidget(lineEdit_email, 1, 1, 1, 2);
    fieldsLayout->addWidget(label, 2, 0);
    fieldsLayout->addWidget(label_captcha, 2, 1);
    fieldsLayout->addWidget(pushButton_generateCaptcha, 2, 2, Qt::AlignLeft);
    fieldsLayout->addWidget(lineEdit_captcha, 3, 1, 1, 2);
    fieldsLayout->setRowStretch(4, 1);
    fieldsLayout->addWidget(regulatoryLabel, 5, 0, 1, 3);
    fieldsLayout->setColumnStretch(2, 1);

    auto* formLayout = new QHBoxLayout;
    formLayout->setSpacing(24);
    // Even halves: the drive's name with its size and letters needs the room at 1280 pixels.
    formLayout->addWidget(messagePanel, 1);
    formLayout->addWidget(fieldsPanel, 1);

    statusLabel = PageStyle::label(QStringLiteral("statusLabel"), QString(), this);
    pushButton_contactSupport = PageStyle::button(QStringLiteral("pushButton_contactSupport"), tr("SEND MESSAGE"), this);
    pushButton_contactSupport->setMinimumWidth(220);
    PageStyle::markPrimary(pushButton_contactSupport);
    auto* sendLayout = new QHBoxLayout;
    sendLayout->setSpacing(16);
    sendLayout->addWidget(statusLabel, 1);
    sendLayout->addWidget(pushButton_contactSupport);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 32, 40, 32);
    layout->setSpacing(24);
    layout->addWidget(titleLabel);
    layout->addLayout(formLayout, 1);
    layout->addLayout(sendLayout);
}

} // namespace Velmora::Gui
