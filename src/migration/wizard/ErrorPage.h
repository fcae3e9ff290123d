#pragma once

#include "migration/wizard/PageBase.h"

class QLabel;

namespace Velmora::Migration {

// Where every failed or cancelled run ends, with the text of its failure.
class ErrorPage : public PageBase
{
    Q_OBJECT

public:
    explicit ErrorPage(QWidget* parent = nullptr);

    void setErrorMessage(const QString& text);

private:
    QLabel* errorMsgLabel;
};

} // namespace Velmora::Migration
