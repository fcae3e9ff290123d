#!/usr/bin/env bash
# Installs what is missing, builds, and starts the program against the simulated service.
# Extra arguments go to the program (for example -minimized).
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
bash scripts/build.sh
bin="${BUILD_DIR:-build}/bin"

service_pid=
if [ -x "$bin/Kestravin_Service" ]; then
  "$bin/Kestravin_Service" &
  service_pid=$!
  trap '[ -n "$service_pid" ] && kill "$service_pid" 2>/dev/null || true' EXIT
fi
"$bin/kestravin" "$@"
