#include "migration/wizard/SizeCalculationProgressBar.h"

#include "gui/widgets/ProgressBar.h"

#include <QHBoxLayout>
#include <QLabel>

namespace Velmora::Migration {

SizeCalculationProgressBar::SizeCalculationProgressBar(QWidget* parent)
    : QWidget(parent)
    , progress_label(new QLabel(this))
    , progressBar(new Gui::ProgressBar(this))
{
    setObjectName(QStringLiteral("SizeCalculationProgressBar"));
    progress_label->setObjectName(QStringLiteral("progress_label"));
    progressBar->setObjectName(QStringLiteral("progressBar"));
    progressBar->setRange(0, 100);
    progressBar->setTextVisible(false);
    progressBar->setFixedHeight(14);
    // Wide enough for "100%" in the page font, so that the bar doesn't move as the number grows.
    progress_label->setMinimumWidth(48);
    progress_label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    layout->addWidget(progressBar, 1);
    layout->addWidget(progress_label);
    setValue(0);
}

int SizeCalculationProgressBar::value() const
{
    return progressBar->value();
}

void SizeCalculationProgressBar::setValue(int percent)
{
    progressBar->setValue(percent);
    progress_label->setText(QStringLiteral("%1%").arg(progressBar->value()));
}

} // namespace Velmora::Migration
