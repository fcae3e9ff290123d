#pragma once

#include "gui/Page.h"

#include <QMetaObject>

class QFrame;
class QLabel;

namespace Velmora::System {
class System;
}

namespace Velmora::Smart {
class SmartController;
}

namespace Velmora::Gui {

class ParamValueWidget;
class ProgressBar;
class TimeGraph;

// "SMART PARAMETERS": what the current drive's SMART controller answers, asked anew on every
// read-out. The page keeps no figures of its own.
class SmartParametersPage : public Page
{
    Q_OBJECT

public:
    explicit SmartParametersPage(Velmora::System::System* system, QWidget* parent = nullptr);

protected slots:
    void connectToCurrentDrive();
    void reloadData();

private:
    void buildForm();
    // A panel with a caption row over a bar: the objects "<name>_param" and "<name>_progressBar".
    QFrame* barPanel(const QString& name, const QString& caption, ParamValueWidget** row, ProgressBar** bar);
    Velmora::Smart::SmartController* currentController() const;
    void showWrittenData(Velmora::Smart::SmartController* controller);

    Velmora::System::System* system;
    QMetaObject::Connection controllerConnection;

    QLabel* titleLabel = nullptr;
    ProgressBar* life_progressBar = nullptr;
    ParamValueWidget* life_param = nullptr;
    ProgressBar* temp_progressBar = nullptr;
    ParamValueWidget* temp_param = nullptr;
    ParamValueWidget* powerOnHours_param = nullptr;
    ParamValueWidget* powerCycles_param = nullptr;
    ParamValueWidget* avgEraseCount_param = nullptr;
    ParamValueWidget* maxEraseCount_param = nullptr;
    TimeGraph* GBWrittenGraph = nullptr;
    ParamValueWidget* GBWritten_param = nullptr;
};

} // namespace Velmora::Gui
