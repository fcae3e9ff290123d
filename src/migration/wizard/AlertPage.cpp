#include "migration/wizard/AlertPage.h"

#include <QLabel>
#include <QVBoxLayout>

namespace Velmora::Migration {

AlertPage::AlertPage(QWidget* parent)
    : PageBase(ProgressPageId, tr("DATA LOSS WARNING"), parent, 3)
{
    setObjectName(QStringLiteral("AlertPage"));
    auto* label = new QLabel(tr("WARNING:\nTHIS OPERATION WILL ARASE ALL DATA ON DESTINATION DISK."), this);
    label->setObjectName(QStringLiteral("label_warning"));
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addStretch(1);
    layout->addWidget(label);
    layout->addStretch(1);
}

} // namespace Velmora::Migration
