#pragma once

#include "gui/Page.h"
#include "performance/PerformanceCheck.h"

class QLabel;
class QPushButton;

namespace Velmora::Gui {

class ProgressBar;

// "PERFORMANCE CHECK": starts and cancels the speed test of the current drive and follows it
// round by round. All it knows comes from the check's signals.
class PerformanceCheckPage : public Page
{
    Q_OBJECT

public:
    explicit PerformanceCheckPage(Velmora::Performance::PerformanceCheck* performanceCheck, QWidget* parent = nullptr);

private slots:
    void onProgressChanged(int progress);
    void onElapsedTimeChanged(int seconds);
    void onRemainingTimeChanged(int seconds);
    void on_toggleTest_clicked();
    void onPerformanceCheckStatusChanged(Velmora::Performance::PerformanceCheck::TestStatus status);
    void onPerformanceResultChanged();

private:
    void buildForm();

    Velmora::Performance::PerformanceCheck* performanceCheck;

    QLabel* titleLabel = nullptr;
    QLabel* testStatus = nullptr;
    QLabel* testProgress = nullptr;
    ProgressBar* progressBar = nullptr;
    QLabel* elapsedTime = nullptr;
    QLabel* remainingTime = nullptr;
    QLabel* label_2 = nullptr;
    QLabel* label = nullptr;
    QLabel* readResult = nullptr;
    QLabel* writeResult = nullptr;
    QLabel* label_testDetails = nullptr;
    QPushButton* toggleTest = nullptr;
};

} // namespace Velmora::Gui
