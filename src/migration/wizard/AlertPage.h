#pragma once

#include "migration/wizard/PageBase.h"

namespace Velmora::Migration {

// The last word before the destination is wiped; the start button stands on this page.
class AlertPage : public PageBase
{
    Q_OBJECT

public:
    explicit AlertPage(QWidget* parent = nullptr);
};

} // namespace Velmora::Migration
