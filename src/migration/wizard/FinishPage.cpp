#include "migration/wizard/FinishPage.h"

#include <QLabel>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace Velmora::Migration {

FinishPage::FinishPage(QWidget* parent)
    : PageBase(NoPageId, tr("MIGRATION STATUS"), parent)
    , failedToCopyFiles_label(new QLabel(this))
    , faultedFilesAndDirectories_textBrowser(new QTextBrowser(this))
{
    setObjectName(QStringLiteral("FinishPage"));
    setFinalPage(true);
    auto* success = new QLabel(tr("MIGRATION SUCCESFUL"), this);
    success->setObjectName(QStringLiteral("label_success"));
    success->setAlignment(Qt::AlignCenter);
    failedToCopyFiles_label->setObjectName(QStringLiteral("failedToCopyFiles_label"));
    failedToCopyFiles_label->setWordWrap(true);
    faultedFilesAndDirectories_textBrowser->setObjectName(QStringLiteral("faultedFilesAndDirectories_textBrowser"));
    faultedFilesAndDirectories_textBrowser->setLineWrapMode(QTextEdit::NoWrap);
    failedToCopyFiles_label->hide();
    faultedFilesAndDirectories_textBrowser->hide();

    auto* layout = new QVBoxLayout(this);
    layout->addStretch(1);
    layout->addWidget(success);
    layout->addSpacing(16);
    layout->addWidget(failedToCopyFiles_label);
    layout->addWidget(faultedFilesAndDirectories_textBrowser, 4);
    layout->addStretch(1);
}

void FinishPage::setFaultedFilesAndDirectories(const QStringList& faultedFiles, const QStringList& faultedDirectories)
{
    // Plain text: a file name is no markup.
    faultedFilesAndDirectories_textBrowser->setPlainText((faultedFiles + faultedDirectories).join(QLatin1Char('\n')));
    failedToCopyFiles_label->setText(tr("Velmora tool has successfully migrated your operating system, but the files and directories listed below failed to copy. Despite this your system should be operational."));
    failedToCopyFiles_label->show();
    faultedFilesAndDirectories_textBrowser->show();
}

} // namespace Velmora::Migration
