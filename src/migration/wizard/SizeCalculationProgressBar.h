#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;

namespace Velmora::Migration {

// How far an estimation of partition sizes has got: a bar and the percent beside it.
class SizeCalculationProgressBar : public QWidget
{
    Q_OBJECT

public:
    explicit SizeCalculationProgressBar(QWidget* parent = nullptr);

    int value() const;

public slots:
    void setValue(int percent);

private:
    QLabel* progress_label;
    QProgressBar* progressBar;
};

} // namespace Velmora::Migration
