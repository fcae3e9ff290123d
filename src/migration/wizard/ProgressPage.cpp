#include "migration/wizard/ProgressPage.h"

#include "gui/widgets/RoundProgressBar.h"
#include "migration/Migration.h"

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QHBoxLayout>
#include <QLabel>
#include <QMovie>
#include <QVBoxLayout>

namespace Velmora::Migration {

namespace {
// The round gauge is drawn for a scene of this side.
constexpr int GaugeSide = 250;
} // namespace

ProgressPage::ProgressPage(Migration* migration, QWidget* parent)
    : PageBase(FinishPageId, tr("MIGRATION STATUS"), parent)
    , migration(migration)
    , label_step(new QLabel(this))
    , movie(new QMovie(QStringLiteral(":/wizard/migration_small_gif"), QByteArray(), this))
    , migrationProgressBarView(new QGraphicsView(this))
    , progressBar(new Gui::RoundProgressBar(QRectF(0, 0, GaugeSide, GaugeSide)))
{
    setObjectName(QStringLiteral("ProgressPage"));
    auto* caption = new QLabel(tr("MIGRATION IN PROGRESS"), this);
    caption->setObjectName(QStringLiteral("label_inProgress"));
    auto* animation = new QLabel(this);
    animation->setObjectName(QStringLiteral("label_animation"));
    animation->setMovie(movie);
    label_step->setObjectName(QStringLiteral("label_step"));

    migrationProgressBarView->setObjectName(QStringLiteral("migrationProgressBarView"));
    migrationProgressBarView->setScene(new QGraphicsScene(0, 0, GaugeSide, GaugeSide, migrationProgressBarView));
    migrationProgressBarView->scene()->addItem(progressBar);
    migrationProgressBarView->setFixedSize(GaugeSide + 12, GaugeSide + 12);
    migrationProgressBarView->setFrameShape(QFrame::NoFrame);
    migrationProgressBarView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    migrationProgressBarView->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    migrationProgressBarView->setRenderHint(QPainter::Antialiasing);
    migrationProgressBarView->setStyleSheet(QStringLiteral("background: transparent; border: none;"));

    auto* header = new QHBoxLayout;
    header->addStretch(1);
    header->addWidget(animation);
    header->addWidget(caption);
    header->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    layout->addStretch(1);
    layout->addLayout(header);
    layout->addSpacing(12);
    layout->addWidget(migrationProgressBarView, 0, Qt::AlignHCenter);
    layout->addSpacing(12);
    layout->addWidget(label_step, 0, Qt::AlignHCenter);
    layout->addStretch(1);

    connect(migration, &Migration::progressChanged, this, &ProgressPage::updateMigrationData);
    connect(migration, &Migration::migrationStepChanged, this, &ProgressPage::updateMigrationData);
    updateMigrationData();
}

void ProgressPage::updateMigrationData()
{
    switch (migration->migrationStep()) {
    case InitializingDestinationDisk:
        label_step->setText(tr("REMOVING PARTITIONS..."));
        break;
    case CreatingPartitions:
    case FormattingPartitions:
        label_step->setText(tr("PREPARING NEW PARTITIONS..."));
        break;
    case CopyingFiles:
        label_step->setText(tr("COPYING FILES... %1 / %2")
                                .arg(migration->copiedSize().toString(), migration->totalSize().toString()));
        progressBar->setValue(migration->progress() * 100.0);
        break;
    case FixingBootability:
        label_step->setText(tr("CHANGING BOOT CONFIGURATION..."));
        break;
    default:
        break;
    }
}

void ProgressPage::showEvent(QShowEvent* event)
{
    PageBase::showEvent(event);
    movie->start();
}

void ProgressPage::hideEvent(QHideEvent* event)
{
    PageBase::hideEvent(event);
    movie->stop();
}

} // namespace Velmora::Migration
