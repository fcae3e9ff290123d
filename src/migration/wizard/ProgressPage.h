#pragma once

#include "migration/wizard/PageBase.h"

class QGraphicsView;
class QLabel;
class QMovie;

namespace Velmora::Gui {
class RoundProgressBar;
}

namespace Velmora::Migration {

class Migration;

// Follows a run: what the service is doing now and, during the copy, how much has gone across.
class ProgressPage : public PageBase
{
    Q_OBJECT

public:
    explicit ProgressPage(Migration* migration, QWidget* parent = nullptr);

public slots:
    void updateMigrationData();

protected:
    // The animation runs only while it can be seen: the program may sit in the tray for months.
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    Migration* migration;
    QLabel* label_step;
    QMovie* movie;
    QGraphicsView* migrationProgressBarView;
    Gui::RoundProgressBar* progressBar;
};

} // namespace Velmora::Migration
