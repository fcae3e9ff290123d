#include "gui/pages/SmartParametersPage.h"

#include "gui/pages/PageStyle.h"
#include "gui/widgets/ParamValueWidget.h"
#include "gui/widgets/ProgressBar.h"
#include "gui/widgets/TimeGraph.h"
#include "gui/widgets/TitleLabel.h"
#include "settings/StoredValue.h"
#include "smart/SmartController.h"
#include "system/Drive.h"
#include "system/System.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace Velmora::Gui {

using Velmora::Smart::SmartController;
using Velmora::Smart::SmartParameter;

namespace {

constexpr int NameWidth = 190;
constexpr int BarHeight = 28;

QString notSupported()
{
    return SmartParametersPage::tr("NOT SUPPORTED");
}

QString wholeNumber(double value)
{
    return QString::number(value, 'f', 0);
}

// A QProgressBar ignores a value outside its range and would keep showing the previous one; a
// figure beyond the scale, such as a temperature over 100 degrees, fills the bar instead.
void showOnBar(ProgressBar* bar, double value)
{
    bar->setValue(qBound(bar->minimum(), static_cast<int>(value), bar->maximum()));
}

ParamValueWidget* paramRow(const QString& objectName, const QString& caption, QWidget* parent)
{
    auto* row = new ParamValueWidget(parent);
    row->setObjectName(objectName);
    row->setName(caption);
    row->setNameWidth(NameWidth);
    return row;
}

ProgressBar* segmentBar(const QString& objectName, QWidget* parent)
{
    auto* bar = new ProgressBar(parent);
    bar->setObjectName(objectName);
    bar->setValue(0);
    bar->setTextVisible(false);
    bar->setFixedHeight(BarHeight);
    return bar;
}

} // namespace

SmartParametersPage::SmartParametersPage(Velmora::System::System* system, QWidget* parent)
    : Page(parent)
    , system(system)
{
    buildForm();
    connect(system, &System::System::currentDriveChanged, this, &SmartParametersPage::connectToCurrentDrive);
    if (system->currentDrive())
        connectToCurrentDrive();
}

QFrame* SmartParametersPage::barPanel(const QString& name, const QString& caption, ParamValueWidget** row,
    ProgressBar** bar)
{
    QFrame* panel = PageStyle::panel(name + QStringLiteral("Panel"), this);
    *row = paramRow(name + QStringLiteral("_param"), caption, panel);
    *bar = segmentBar(name + QStringLiteral("_progressBar"), panel);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(24, 20, 24, 24);
    layout->setSpacing(16);
    layout->addWidget(*row);
    layout->addWidget(*bar);
    return panel;
}

void SmartParametersPage::buildForm()
{
    setObjectName(QStringLiteral("SmartParametersPage"));
    setStyleSheet(PageStyle::stylesheet());

    titleLabel = new TitleLabel(tr("SMART PARAMETERS"), this);
    titleLabel->setObjectName(QStringLiteral("titleLabel"));

    QFrame* lifePanel = barPanel(QStringLiteral("life"), tr("LIFE REMAINING:"), &life_param, &life_progressBar);
    QFrame* tempPanel = barPanel(QStringLiteral("temp"), tr("TEMPERATURE:"), &temp_param, &temp_progressBar);

    auto* barsLayout = new QHBoxLayout;
    barsLayout->setSpacing(24);
    barsLayout->addWidget(lifePanel, 1);
    barsLayout->addWidget(tempPanel, 1);

    QFrame* countersPanel = PageStyle::panel(QStringLiteral("countersPanel"), this);
    powerOnHours_param = paramRow(QStringLiteral("powerOnHours_param"), tr("POWER-ON HOURS"), countersPanel);
    powerCycles_param = paramRow(QStringLiteral("powerCycles_param"), tr("POWER CYCLES"), countersPanel);
    avgEraseCount_param = paramRow(QStringLiteral("avgEraseCount_param"), tr("AVG ERASE COUNT"), countersPanel);
    maxEraseCount_param = paramRow(QStringLiteral("maxEraseCount_param"), tr("MAX ERASE COUNT"), countersPanel);
    auto* countersLayout = new QGridLayout(countersPanel);
    countersLayout->setContentsMargins(24, 20, 24, 20);
    countersLayout->setHorizontalSpacing(48);
    countersLayout->setVerticalSpacing(16);
    countersLayout->addWidget(powerOnHours_param, 0, 0);
    countersLayout->addWidget(powerCycles_param, 1, 0);
    countersLayout->addWidget(avgEraseCount_param, 0, 1);
    countersLayout->addWidget(maxEraseCount_param, 1, 1);

    QFrame* writtenPanel = PageStyle::panel(QStringLiteral("writtenPanel"), this);
    GBWritten_param = paramRow(QStringLiteral("GBWritten_param"), tr("GB WRITTEN"), writtenPanel);
    GBWrittenGraph = new TimeGraph(writtenPanel);
    GBWrittenGraph->setObjectName(QStringLiteral("GBWrittenGraph"));
    GBWrittenGraph->setMinimumHeight(GBWrittenGraph->sizeHint().height());
    auto* writtenLayout = new QVBoxLayout(writtenPanel);
    writtenLayout->setContentsMargins(24, 20, 24, 20);
    writtenLayout->setSpacing(16);
    writtenLayout->addWidget(GBWritten_param);
    writtenLayout->addWidget(GBWrittenGraph, 1);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 32, 40, 32);
    layout->setSpacing(24);
    layout->addWidget(titleLabel);
    layout->addLayout(barsLayout);
    layout->addWidget(countersPanel);
    layout->addWidget(writtenPanel, 1);
}

SmartController* SmartParametersPage::currentController() const
{
    const System::Drive* drive = system->currentDrive();
    return drive ? drive->smartController() : nullptr;
}

void SmartParametersPage::connectToCurrentDrive()
{
    // Only the current drive's read-outs concern the page.
    disconnect(controllerConnection);
    if (SmartController* controller = currentController())
        controllerConnection = connect(controller, &SmartController::dataChanged, this, &SmartParametersPage::reloadData);
    reloadData();
}

void SmartParametersPage::reloadData()
{
    SmartController* controller = currentController();
    const auto ask = [controller](SmartParameter parameter, bool* ok) {
        *ok = false;
        return controller ? controller->parameterValue(parameter, ok) : 0.0;
    };
    bool ok = false;

    const double life = ask(Smart::LifeRemaining, &ok);
    showOnBar(life_progressBar, ok ? life : 0.0);
    life_param->setValue(ok ? tr("%1%").arg(wholeNumber(life)) : notSupported());

    const double temperature = ask(Smart::Temperature, &ok);
    showOnBar(temp_progressBar, ok ? temperature : 0.0);
    temp_param->setValue(ok ? tr("%1 °C").arg(wholeNumber(temperature)) : notSupported());

    const QPair<SmartParameter, ParamValueWidget*> counters[] = {
        {Smart::PowerOnHours, powerOnHours_param},
        {Smart::PowerCycles, powerCycles_param},
        {Smart::AvgEraseCount, avgEraseCount_param},
        {Smart::MaxEraseCount, maxEraseCount_param},
    };
    for (const auto& [parameter, row] : counters) {
        const double value = ask(parameter, &ok);
        row->setValue(ok ? wholeNumber(value) : notSupported());
    }

    showWrittenData(controller);
}

void SmartParametersPage::showWrittenData(SmartController* controller)
{
    bool ok = false;
    const double written = controller ? controller->parameterValue(Smart::GBWritten, &ok) : 0.0;
    const QList<Smart::SmartHistoryPoint*>* history = controller ? controller->parameterHistory(Smart::GBWritten) : nullptr;
    if (!ok || !history || history->isEmpty()) {
        GBWrittenGraph->clear();
        GBWritten_param->setValue(notSupported());
        return;
    }

    // The graph's columns are one read-out apart. With no interval set, or read-outs switched
    // off, there is no time axis to lay the history on.
    const int interval = Settings::storedInt(QStringLiteral("SMART"), QStringLiteral("ReadInterval"), 0);
    if (interval == 0) {
        GBWrittenGraph->clear();
    } else {
        GBWrittenGraph->setInterval(interval / 1000);
        GBWrittenGraph->setData(*history);
        GBWrittenGraph->setUnit(QStringLiteral("GB"));
    }
    GBWritten_param->setValue(tr("%1 GB").arg(wholeNumber(written)));
}

} // namespace Velmora::Gui
