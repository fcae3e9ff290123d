#pragma once

#include <QLoggingCategory>

namespace Velmora::Daemon::Migration {

// Everything that changes a disk is logged here, with what ran and how it ended.
Q_DECLARE_LOGGING_CATEGORY(lcMigration)

} // namespace Velmora::Daemon::Migration
