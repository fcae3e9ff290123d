#include "MigrationLog.h"

namespace Velmora::Daemon::Migration {

Q_LOGGING_CATEGORY(lcMigration, "kestravind.migration")

} // namespace Velmora::Daemon::Migration
