#!/usr/bin/env bash
# Installs what is missing, builds, and starts the program against the simulated back-end; the
# program starts the simulated service beside it by itself. Without a display it runs inside a
# virtual one (Xvfb). Extra arguments go to the program (for example -minimized).
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
bash scripts/build.sh kestravin Kestravin_Service Kestravin_Backend
bin="${BUILD_DIR:-build}/bin"

backend_pid=
if [ -x "$bin/Kestravin_Backend" ]; then
  "$bin/Kestravin_Backend" --quiet &
  backend_pid=$!
  trap 'kill "$backend_pid" 2>/dev/null || true' EXIT
fi

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  xvfb-run -a "$bin/kestravin" "$@"
else
  "$bin/kestravin" "$@"
fi
