#pragma once

#include <QString>
#include <QWizardPage>

namespace Velmora::Migration {

// A page of the migration wizard. The wizard shows the pages itself, so a page only knows where
// its forward road leads and whether the user may take it.
class PageBase : public QWizardPage
{
    Q_OBJECT

public:
    enum PageId {
        NoPageId = -1,
        InitPageId = 1,
        AlertPageId = 2,
        FiltersPageId = 3,
        PartitionSizePageId = 4,
        ProgressPageId = 5,
        FinishPageId = 6,
        ErrorPageId = 7
    };
    Q_ENUM(PageId)

    // `step` numbers the page on the road of three; -1 leaves the title as it is.
    PageBase(int nextPageId, const QString& title, QWidget* parent = nullptr, int step = -1);

    int nextPageId;
    bool complete = true;

    bool isComplete() const override { return complete; }

public slots:
    void setComplete(bool complete);
    void setComplete();
};

} // namespace Velmora::Migration
