#include "migration/wizard/WizardStyle.h"

#include <QVariant>
#include <QWidget>

namespace Velmora::Migration::WizardStyle {

namespace {

const char* const Stylesheet = R"(
#MigrationWizard { background-color: rgb(0, 2, 40); }
#MigrationWizard QLabel { color: rgb(255, 255, 255); font: 13px "Inter UI"; background: transparent; }
#MigrationWizard #titleLabel { font: 24px "Inter UI Black"; }
#MigrationWizard #label_listHeader, #MigrationWizard #label_sourceDrive, #MigrationWizard #label_destinationDrive,
#MigrationWizard #label_partitionsToMigrate, #MigrationWizard #driveFrom_caption, #MigrationWizard #driveTo_caption {
    color: rgb(127, 149, 190); font: 12px "Inter UI Semi Bold";
}
#MigrationWizard #label_warning, #MigrationWizard #label_success, #MigrationWizard #label_inProgress {
    font: 20px "Inter UI Black";
}
#driveFrom_panel, #driveTo_panel { background-color: rgb(0, 10, 50); border: 1px solid rgb(0, 36, 94); border-radius: 4px; }
#partitionsArea, #partitionsList { background: transparent; }
#PartitionDetailsWidget { background-color: rgb(0, 10, 50); border-radius: 3px; }
#MigrationWizard QPushButton {
    color: rgb(255, 255, 255); background-color: rgb(0, 36, 94); border: 1px solid rgb(0, 225, 255);
    border-radius: 3px; padding: 6px 18px; font: 12px "Inter UI Semi Bold";
}
#MigrationWizard QPushButton:hover { background-color: rgb(0, 34, 89); }
#MigrationWizard QPushButton:disabled { color: rgb(90, 104, 150); border-color: rgb(16, 44, 107); background-color: rgb(0, 10, 50); }
#MigrationWizard QPushButton[primary="true"]:enabled {
    border: none;
    background-color: qlineargradient(x1: 0, y1: 0, x2: 1, y2: 0, stop: 0 rgb(0, 225, 255), stop: 1 rgb(160, 3, 218));
}
#MigrationWizard QComboBox, #MigrationWizard QDoubleSpinBox {
    color: rgb(255, 255, 255); background-color: rgb(0, 2, 63); border: 1px solid rgb(0, 36, 94);
    padding: 4px 8px; font: 13px "Inter UI";
}
#MigrationWizard QDoubleSpinBox:disabled { color: rgb(90, 104, 150); }
#MigrationWizard QComboBox QAbstractItemView {
    color: rgb(255, 255, 255); background-color: rgb(0, 2, 63); selection-background-color: rgb(0, 34, 89);
}
#MigrationWizard QCheckBox { color: rgb(255, 255, 255); font: 13px "Inter UI"; }
#MigrationWizard QCheckBox:disabled { color: rgb(90, 104, 150); }
#MigrationWizard QCheckBox::indicator, #MigrationWizard QTreeView::indicator {
    width: 12px; height: 12px; border: 1px solid rgb(0, 225, 255); border-radius: 2px; background-color: rgb(0, 2, 40);
}
#MigrationWizard QCheckBox::indicator:checked, #MigrationWizard QTreeView::indicator:checked {
    background-color: qlineargradient(x1: 0, y1: 0, x2: 1, y2: 1, stop: 0 rgb(0, 225, 255), stop: 1 rgb(160, 3, 218));
}
#MigrationWizard QTreeView::indicator:indeterminate { background-color: rgb(0, 100, 140); }
#MigrationWizard QCheckBox::indicator:disabled { border-color: rgb(50, 66, 120); }
/* What always goes across stays visibly checked, in a muted gradient. */
#MigrationWizard QCheckBox::indicator:checked:disabled {
    background-color: qlineargradient(x1: 0, y1: 0, x2: 1, y2: 1, stop: 0 rgb(0, 120, 140), stop: 1 rgb(90, 20, 125));
}
#MigrationWizard QTabWidget::pane { border: 1px solid rgb(0, 36, 94); background-color: rgb(0, 10, 50); }
#MigrationWizard QTabBar::tab {
    color: rgb(255, 255, 255); background-color: rgb(0, 36, 94); padding: 8px 18px; font: 12px "Inter UI Semi Bold";
}
#MigrationWizard QTabBar::tab:selected { background-color: rgb(0, 10, 50); }
#MigrationWizard QTreeView, #MigrationWizard QTextBrowser {
    color: rgb(255, 255, 255); background-color: rgb(0, 2, 40); border: 1px solid rgb(0, 36, 94);
    font: 13px "Inter UI"; selection-background-color: rgb(0, 34, 89);
}
#MigrationWizard QHeaderView::section {
    color: rgb(127, 149, 190); background-color: rgb(0, 10, 50); border: none; padding: 4px 8px;
    font: 12px "Inter UI Semi Bold";
}
)";

} // namespace

QString stylesheet()
{
    return QString::fromUtf8(Stylesheet);
}

void markPrimary(QWidget* button)
{
    button->setProperty("primary", true);
}

} // namespace Velmora::Migration::WizardStyle
