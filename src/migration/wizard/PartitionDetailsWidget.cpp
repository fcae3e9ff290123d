#include "migration/wizard/PartitionDetailsWidget.h"

#include "migration/MigrationDestPartition.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>

namespace Velmora::Migration {

using System::Bytes;
using System::MigrationDestPartition;

namespace {

QLabel* lamp(const QString& objectName, const QString& image, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setPixmap(QPixmap(image).scaled(16, 16, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    label->setFixedSize(PartitionDetailsWidget::LampColumnWidth, 16);
    label->hide();
    return label;
}

// Above any disk there is: a range for showing a value, not for choosing one.
constexpr double WideRangeMegabytes = 1e12;

double inMegabytes(const Bytes& size)
{
    return size.inUnit(Bytes::MB);
}

} // namespace

PartitionDetailsWidget::PartitionDetailsWidget(MigrationDestPartition* partition, QWidget* parent)
    : QWidget(parent)
    , m_partition(partition)
    , partitionCheckBox(new QCheckBox(this))
    , label_partitionName(new QLabel(this))
    , label_partitionUsed(new QLabel(this))
    , spinBox_partitionSize(new QDoubleSpinBox(this))
    , pushButton_filterFiles(new QPushButton(tr("EXCLUDE FILES..."), this))
    , status_OK(lamp(QStringLiteral("status_OK"), QStringLiteral(":/icons/LED_OK"), this))
    , status_BAD(lamp(QStringLiteral("status_BAD"), QStringLiteral(":/icons/LED_bad"), this))
{
    setObjectName(QStringLiteral("PartitionDetailsWidget"));
    setAttribute(Qt::WA_StyledBackground);
    partitionCheckBox->setObjectName(QStringLiteral("partitionCheckBox"));
    partitionCheckBox->setChecked(true);
    label_partitionName->setObjectName(QStringLiteral("label_partitionName"));
    label_partitionUsed->setObjectName(QStringLiteral("label_partitionUsed"));
    label_partitionUsed->setFixedWidth(UsedColumnWidth);
    spinBox_partitionSize->setObjectName(QStringLiteral("spinBox_partitionSize"));
    spinBox_partitionSize->setDecimals(0);
    spinBox_partitionSize->setSuffix(QStringLiteral(" MB"));
    spinBox_partitionSize->setFixedWidth(SizeColumnWidth - 10);
    spinBox_partitionSize->setKeyboardTracking(false);
    spinBox_partitionSize->setSingleStep(1024);
    pushButton_filterFiles->setObjectName(QStringLiteral("pushButton_filterFiles"));
    pushButton_filterFiles->setFixedWidth(FiltersColumnWidth - 10);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->setSpacing(10);
    layout->addWidget(partitionCheckBox);
    layout->addWidget(label_partitionName, 1);
    layout->addWidget(label_partitionUsed);
    layout->addWidget(spinBox_partitionSize);
    layout->addSpacing(10);
    layout->addWidget(pushButton_filterFiles);
    layout->addSpacing(10);
    layout->addWidget(status_OK);
    layout->addWidget(status_BAD);

    connect(partitionCheckBox, &QCheckBox::toggled, this, &PartitionDetailsWidget::on_partitionCheckBox_toggled);
    connect(spinBox_partitionSize, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
        &PartitionDetailsWidget::on_sizeDoubleSpinBox_valueChanged);
    connect(pushButton_filterFiles, &QPushButton::clicked, this, &PartitionDetailsWidget::on_filtersPushButton_clicked);
    connect(partition, &MigrationDestPartition::sizeLimitationsChanged, this,
        &PartitionDetailsWidget::onSizeLimitationsChanged);
    spinBox_partitionSize->installEventFilter(this);
    spinBox_partitionSize->setRange(0, WideRangeMegabytes);
    updateData();
}

QString PartitionDetailsWidget::nameText(const MigrationDestPartition& partition)
{
    const QString label = partition.label().isEmpty() ? tr("[NO LABEL]")
                                                      : QLatin1Char('[') + partition.label() + QLatin1Char(']');
    const QString letter = partition.letter().isEmpty() ? QString() : partition.letter() + QLatin1Char(' ');
    return QStringLiteral("%1%2").arg(letter, label);
}

QString PartitionDetailsWidget::statusTip(const MigrationDestPartition& partition)
{
    switch (partition.sizeStatus()) {
    case MigrationDestPartition::SizeCalculating:
        return tr("UPDATING USED SIZE AFTER FILTERS APPLIED");
    case MigrationDestPartition::SizeBelowMinimum:
        return tr("DATA FITS BUT RECOMMENDED MINIMUM SIZE IS: %1").arg(partition.minimumSize().toString(Bytes::MB));
    case MigrationDestPartition::SizeDoesNotFit:
        return tr("DATA DOES NOT FIT TO PARTITION. INCREASE PARTITION SIZE OR FILTER DATA.");
    case MigrationDestPartition::SizeOk:
    case MigrationDestPartition::SizeNotMigrated:
    case MigrationDestPartition::SizeBelowRecommended:
        break;
    }
    return tr("RECOMMENDED SIZE: %1").arg(partition.recommendedSize().toString(Bytes::MB));
}

void PartitionDetailsWidget::updateData()
{
    const MigrationDestPartition* partition = m_partition.data();
    if (!partition)
        return;
    {
        const QSignalBlocker blocker(partitionCheckBox);
        partitionCheckBox->setChecked(partition->migrate());
    }
    label_partitionName->setText(nameText(*partition));
    QString used = partition->used().toString(Bytes::MB);
    if (partition->isCalculating())
        used += QStringLiteral("...");
    label_partitionUsed->setText(used);
    // Setting an unchanged value would still rewrite the text under a user who is typing.
    if (qAbs(spinBox_partitionSize->value() - inMegabytes(partition->size())) >= 0.5) {
        const QSignalBlocker blocker(spinBox_partitionSize);
        spinBox_partitionSize->setValue(inMegabytes(partition->size()));
    }
    const bool fits = partition->fits();
    status_OK->setVisible(fits);
    status_BAD->setVisible(!fits);
    setToolTip(statusTip(*partition));
    updateEnabledStates();
}

void PartitionDetailsWidget::onSizeLimitationsChanged()
{
    // Every replanning moves the limits of every row. A new range makes a spin box measure its
    // texts and the whole list lay itself out again, so the limits are held only by the box the
    // user is editing; the others show their value within a range that never clamps it.
    if (spinBox_partitionSize->hasFocus())
        applySizeLimits();
}

void PartitionDetailsWidget::applySizeLimits()
{
    const MigrationDestPartition* partition = m_partition.data();
    if (!partition)
        return;
    // A new range may clamp the value; that is no choice of the user's to write back.
    const QSignalBlocker blocker(spinBox_partitionSize);
    spinBox_partitionSize->setRange(inMegabytes(partition->allowedMinSize()), inMegabytes(partition->maxSize()));
}

bool PartitionDetailsWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == spinBox_partitionSize && event->type() == QEvent::FocusIn) {
        applySizeLimits();
    } else if (watched == spinBox_partitionSize && event->type() == QEvent::FocusOut) {
        const QSignalBlocker blocker(spinBox_partitionSize);
        spinBox_partitionSize->setRange(0, WideRangeMegabytes);
    }
    return QWidget::eventFilter(watched, event);
}

void PartitionDetailsWidget::setRowEnabled(bool enabled)
{
    m_rowEnabled = enabled;
    updateEnabledStates();
}

void PartitionDetailsWidget::updateEnabledStates()
{
    const MigrationDestPartition* partition = m_partition.data();
    if (!partition)
        return;
    const bool checked = partitionCheckBox->isChecked();
    if (partition->isSystemRequired()) {
        partitionCheckBox->setEnabled(false);
        spinBox_partitionSize->setEnabled(false);
        pushButton_filterFiles->setEnabled(false);
        return;
    }
    spinBox_partitionSize->setEnabled(checked);
    if (partition->letter().isEmpty() || partition->fileSystem().isEmpty()) {
        partitionCheckBox->setEnabled(m_rowEnabled);
        pushButton_filterFiles->setEnabled(false);
        return;
    }
    partitionCheckBox->setEnabled(m_rowEnabled && !partition->isOs());
    pushButton_filterFiles->setEnabled(m_rowEnabled && checked);
}

void PartitionDetailsWidget::on_partitionCheckBox_toggled(bool checked)
{
    if (m_partition)
        m_partition->setMigrate(checked);
    updateEnabledStates();
}

void PartitionDetailsWidget::on_sizeDoubleSpinBox_valueChanged(double arg1)
{
    if (m_partition)
        m_partition->setSize(Bytes(arg1, Bytes::MB));
}

void PartitionDetailsWidget::on_filtersPushButton_clicked()
{
    if (m_partition)
        emit requestFiltersPage(m_partition->id());
}

} // namespace Velmora::Migration
