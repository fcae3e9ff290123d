#pragma once

#include "migration/wizard/PageBase.h"

#include <QStringList>

class QLabel;
class QTextBrowser;

namespace Velmora::Migration {

// The end of a run that went through; lists what could not be copied, when there is anything.
class FinishPage : public PageBase
{
    Q_OBJECT

public:
    explicit FinishPage(QWidget* parent = nullptr);

    void setFaultedFilesAndDirectories(const QStringList& faultedFiles, const QStringList& faultedDirectories);

private:
    QLabel* failedToCopyFiles_label;
    QTextBrowser* faultedFilesAndDirectories_textBrowser;
};

} // namespace Velmora::Migration
