#include "migration/wizard/ErrorPage.h"

#include <QLabel>
#include <QVBoxLayout>

namespace Velmora::Migration {

ErrorPage::ErrorPage(QWidget* parent)
    : PageBase(NoPageId, tr("MIGRATION FAILED"), parent)
    , errorMsgLabel(new QLabel(this))
{
    setObjectName(QStringLiteral("ErrorPage"));
    setFinalPage(true);
    errorMsgLabel->setObjectName(QStringLiteral("errorMsgLabel"));
    errorMsgLabel->setAlignment(Qt::AlignCenter);
    errorMsgLabel->setWordWrap(true);
    errorMsgLabel->setStyleSheet(QStringLiteral("font: 18px \"Inter UI Semi Bold\";"));
    auto* layout = new QVBoxLayout(this);
    layout->addStretch(1);
    layout->addWidget(errorMsgLabel);
    layout->addStretch(1);
}

void ErrorPage::setErrorMessage(const QString& text)
{
    errorMsgLabel->setText(text);
}

} // namespace Velmora::Migration
