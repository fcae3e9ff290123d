#include "gui/pages/PerformanceCheckPage.h"

#include "gui/pages/PageStyle.h"
#include "gui/widgets/ProgressBar.h"
#include "gui/widgets/TitleLabel.h"
#include "performance/PerformanceResult.h"

#include <QColor>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTime>
#include <QVBoxLayout>

namespace Velmora::Gui {

using Velmora::Performance::PerformanceCheck;

namespace {

// Minutes and seconds of a running test; past an hour the minutes start again from 0.
QString clockText(int seconds)
{
    return QTime(0, 0, 0).addSecs(seconds).toString(QStringLiteral("m:ss"));
}

QString speedText(double megabytesPerSecond)
{
    return PerformanceCheckPage::tr("%1 MB/s").arg(QString::number(megabytesPerSecond, 'f', 2));
}

// The caption colour of the pages, as the six hexadecimal digits of a stylesheet colour.
QString captionColorHex()
{
    const QRgb rgb = QColor(140, 150, 195).rgb() & 0xFFFFFF;
    return QString::number(rgb, 16).rightJustified(6, QLatin1Char('0'));
}

const char* const Stylesheet = R"(
#testStatus { font: 18px "Inter UI Semi Bold"; }
#testProgress { font: 28px "Inter UI Black"; }
#elapsedTime, #remainingTime { font: 16px "Inter UI"; }
#label_elapsed, #label_remaining, #label_testDetails { color: rgb(140, 150, 195); font: 12px "Inter UI"; }
#readResult, #writeResult { font: 28px "Inter UI Black"; }
#label, #label_2 { font: 16px "Inter UI Semi Bold"; }
)";

} // namespace

PerformanceCheckPage::PerformanceCheckPage(PerformanceCheck* performanceCheck, QWidget* parent)
    : Page(parent)
    , performanceCheck(performanceCheck)
{
    buildForm();

    const QString captionStyle = QStringLiteral("QLabel { color: #") + captionColorHex() + QStringLiteral("}");
    label_2->setStyleSheet(captionStyle);
    label->setStyleSheet(captionStyle);

    connect(toggleTest, &QPushButton::clicked, this, &PerformanceCheckPage::on_toggleTest_clicked);
    connect(performanceCheck, &PerformanceCheck::progressChanged, this, &PerformanceCheckPage::onProgressChanged);
    connect(performanceCheck, &PerformanceCheck::elapsedTimeChanged, this, &PerformanceCheckPage::onElapsedTimeChanged);
    connect(performanceCheck, &PerformanceCheck::remainingTimeChanged, this,
        &PerformanceCheckPage::onRemainingTimeChanged);
    connect(performanceCheck, &PerformanceCheck::statusChanged, this,
        &PerformanceCheckPage::onPerformanceCheckStatusChanged);
    connect(performanceCheck, &PerformanceCheck::resultChanged, this, &PerformanceCheckPage::onPerformanceResultChanged);
}

void PerformanceCheckPage::buildForm()
{
    setObjectName(QStringLiteral("PerformanceCheckPage"));
    setStyleSheet(PageStyle::stylesheet() + QString::fromUtf8(Stylesheet));

    titleLabel = new TitleLabel(tr("PERFORMANCE CHECK"), this);
    titleLabel->setObjectName(QStringLiteral("titleLabel"));

    QFrame* progressPanel = PageStyle::panel(QStringLiteral("progressPanel"), this);
    testStatus = PageStyle::label(QStringLiteral("testStatus"), QString(), progressPanel);
    testProgress = PageStyle::label(QStringLiteral("testProgress"), QString(), progressPanel);
    testProgress->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    progressBar = new ProgressBar(progressPanel);
    progressBar->setObjectName(QStringLiteral("progressBar"));
    progressBar->setValue(0);
    progressBar->setTextVisible(false);
    progressBar->setFixedHeight(28);
    elapsedTime = PageStyle::label(QStringLiteral("elapsedTime"), QStringLiteral("0:00"), progressPanel);
    remainingTime = PageStyle::label(QStringLiteral("remainingTime"), QString(), progressPanel);
    remainingTime->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QLabel* elapsedCaption = PageStyle::label(QStringLiteral("label_elapsed"), tr("ELAPSED"), progressPanel);
    QLabel* remainingCaption = PageStyle::label(QStringLiteral("label_remaining"), tr("REMAINING"), progressPanel);
    remainingCaption->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* progressLayout = new QGridLayout(progressPanel);
    progressLayout->setContentsMargins(24, 20, 24, 24);
    progressLayout->setHorizontalSpacing(24);
    progressLayout->setVerticalSpacing(12);
    progressLayout->addWidget(testStatus, 0, 0);
    progressLayout->addWidget(testProgress, 0, 1);
    progressLayout->addWidget(progressBar, 1, 0, 1, 2);
    progressLayout->addWidget(elapsedCaption, 2, 0);
    progressLayout->addWidget(remainingCaption, 2, 1);
    progressLayout->addWidget(elapsedTime, 3, 0);
    progressLayout->addWidget(remainingTime, 3, 1);

    QFrame* resultsPanel = PageStyle::panel(QStringLiteral("resultsPanel"), this);
    label_2 = PageStyle::label(QStringLiteral("label_2"), tr("WRITE:"), resultsPanel);
    label = PageStyle::label(QStringLiteral("label"), tr("READ:"), resultsPanel);
    // The read figure starts with two blanks; the page has always looked so before a first test.
    readResult = PageStyle::label(QStringLiteral("readResult"), tr("0  MB/s"), resultsPanel);
    writeResult = PageStyle::label(QStringLiteral("writeResult"), tr("0 MB/s"), resultsPanel);
    // Empty while a test runs; the panel keeps its height all the same.
    for (QLabel* figure : {readResult, writeResult})
        figure->setMinimumHeight(40);
    auto* resultsLayout = new QGridLayout(resultsPanel);
    resultsLayout->setContentsMargins(24, 20, 24, 20);
    resultsLayout->setHorizontalSpacing(24);
    resultsLayout->setVerticalSpacing(8);
    resultsLayout->addWidget(label_2, 0, 0);
    resultsLayout->addWidget(writeResult, 1, 0);
    resultsLayout->addWidget(label, 0, 1);
    resultsLayout->addWidget(readResult, 1, 1);

    label_testDetails = PageStyle::label(QStringLiteral("label_testDetails"),
        tr("TEST DETAILS: TEST PERFORMS CONTINIOUS WRITE AND READ OF 4MB BLOCKS"), this);
    label_testDetails->setWordWrap(true);

    toggleTest = new QPushButton(tr("START"), this);
    toggleTest->setObjectName(QStringLiteral("toggleTest"));
    toggleTest->setMinimumWidth(200);
    toggleTest->setCursor(Qt::PointingHandCursor);
    PageStyle::markPrimary(toggleTest);
    auto* buttonLayout = new QHBoxLayout;
    buttonLayout->addStretch(1);
    buttonLayout->addWidget(toggleTest);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 32, 40, 32);
    layout->setSpacing(24);
    layout->addWidget(titleLabel);
    layout->addWidget(progressPanel);
    layout->addWidget(resultsPanel);
    layout->addWidget(label_testDetails);
    layout->addStretch(1);
    layout->addLayout(buttonLayout);
}

void PerformanceCheckPage::onProgressChanged(int progress)
{
    progressBar->setValue(progress);
    testProgress->setText(tr("%1%").arg(progress));
}

void PerformanceCheckPage::onElapsedTimeChanged(int seconds)
{
    elapsedTime->setText(clockText(seconds));
}

void PerformanceCheckPage::onRemainingTimeChanged(int seconds)
{
    remainingTime->setText(clockText(seconds));
}

void PerformanceCheckPage::on_toggleTest_clicked()
{
    if (performanceCheck->isRunning())
        performanceCheck->stopTest();
    else
        performanceCheck->startTest();
}

void PerformanceCheckPage::onPerformanceCheckStatusChanged(PerformanceCheck::TestStatus status)
{
    switch (status) {
    case PerformanceCheck::Running:
        testStatus->setText(tr("RUNNING"));
        toggleTest->setText(tr("CANCEL"));
        return;
    case PerformanceCheck::Finished:
        testStatus->setText(tr("TEST FINISHED"));
        progressBar->setValue(100);
        break;
    case PerformanceCheck::Canceled:
        // The check itself sets the bar back right after, through progressChanged(0).
        testStatus->setText(tr("TEST CANCELED"));
        break;
    case PerformanceCheck::Failed:
        testStatus->setText(tr("TEST FAILED"));
        progressBar->setValue(0);
        break;
    default:
        testStatus->clear();
        progressBar->setValue(0);
        break;
    }
    toggleTest->setText(tr("START"));
}

void PerformanceCheckPage::onPerformanceResultChanged()
{
    const Performance::PerformanceResult* result = performanceCheck->currentResult();
    if (result && !result->isEmpty()) {
        readResult->setText(speedText(result->readSpeed()));
        writeResult->setText(speedText(result->writeSpeed()));
    } else {
        readResult->setText(QString());
        writeResult->setText(QString());
    }
}

} // namespace Velmora::Gui
