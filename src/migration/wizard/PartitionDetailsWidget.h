#pragma once

#include <QPointer>
#include <QWidget>

class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;

namespace Velmora::System {
class MigrationDestPartition;
}

namespace Velmora::Migration {

// One partition of the plan as a row: whether it goes across, how large it becomes, the way to
// its filters, and a lamp that tells whether its data fits.
class PartitionDetailsWidget : public QWidget
{
    Q_OBJECT

public:
    // Widths of the columns, shared with the page's header row.
    static constexpr int UsedColumnWidth = 130;
    static constexpr int SizeColumnWidth = 170;
    static constexpr int FiltersColumnWidth = 160;
    static constexpr int LampColumnWidth = 24;

    explicit PartitionDetailsWidget(System::MigrationDestPartition* partition, QWidget* parent = nullptr);

    System::MigrationDestPartition* partition() const { return m_partition.data(); }
    // Around an estimation: a row takes no input while sizes are being measured.
    void setRowEnabled(bool enabled);

    static QString nameText(const System::MigrationDestPartition& partition);
    static QString statusTip(const System::MigrationDestPartition& partition);

signals:
    void requestFiltersPage(int partitionId);

public slots:
    void updateData();
    void onSizeLimitationsChanged();

private slots:
    void on_partitionCheckBox_toggled(bool checked);
    void on_sizeDoubleSpinBox_valueChanged(double arg1);
    void on_filtersPushButton_clicked();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void updateEnabledStates();
    void applySizeLimits();

    QPointer<System::MigrationDestPartition> m_partition;
    bool m_rowEnabled = true;
    QCheckBox* partitionCheckBox;
    QLabel* label_partitionName;
    QLabel* label_partitionUsed;
    QDoubleSpinBox* spinBox_partitionSize;
    QPushButton* pushButton_filterFiles;
    QLabel* status_OK;
    QLabel* status_BAD;
};

} // namespace Velmora::Migration
