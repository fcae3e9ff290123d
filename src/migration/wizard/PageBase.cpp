#include "migration/wizard/PageBase.h"

namespace Velmora::Migration {

PageBase::PageBase(int nextPageId, const QString& title, QWidget* parent, int step)
    : QWizardPage(parent)
    , nextPageId(nextPageId)
{
    if (step < 0)
        setTitle(title);
    else
        setTitle(title + QStringLiteral(" (") + tr("STEP") + QStringLiteral(" %1/3)").arg(step));
}

void PageBase::setComplete(bool isComplete)
{
    if (isComplete == complete)
        return;
    complete = isComplete;
    emit completeChanged();
}

void PageBase::setComplete()
{
    setComplete(true);
}

} // namespace Velmora::Migration
