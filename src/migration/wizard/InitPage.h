#pragma once

#include "migration/wizard/PageBase.h"

#include <QTimer>

class QComboBox;
class QLabel;

namespace Velmora::System {
class Drive;
}

namespace Velmora::Migration {

class Migration;

// The first step: which drive the system comes from and which drive it goes to, each with what
// the user needs to tell the drives apart.
class InitPage : public PageBase
{
    Q_OBJECT

public:
    explicit InitPage(Migration* migration, QWidget* parent = nullptr);

signals:
    void sourceDriveSelected(int id);
    void desinationDriveSelected(int id);

public slots:
    void onDriveListChanged();
    void updateMigrationData();

private slots:
    void on_driveFrom_comboBox_currentIndexChanged(int index);
    void on_driveTo_comboBox_currentIndexChanged(int index);

private:
    struct DriveColumn {
        QComboBox* comboBox;
        QLabel* drive;
        QLabel* storage;
        QLabel* occupied;
    };

    QWidget* buildColumn(const QString& name, const QString& caption, DriveColumn& column);
    void fill(QComboBox* comboBox, const QList<System::Drive*>& drives);
    static void showDrive(const DriveColumn& column, const System::Drive* drive);

    Migration* migration;
    // Which drives may be a destination changes with what is known of them: the drive that holds
    // the system is known as such only once the machine's summary has come after the drive list.
    QTimer listRefresh;
    DriveColumn from;
    DriveColumn to;
};

} // namespace Velmora::Migration
