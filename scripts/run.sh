#!/usr/bin/env bash
# Installs what is missing, builds, and starts the program. The program starts the simulated
# service beside it by itself. Without a display it runs inside a virtual one (Xvfb).
# Extra arguments go to the program (for example -minimized).
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
bash scripts/build.sh
program="${BUILD_DIR:-build}/bin/kestravin"

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  exec xvfb-run -a "$program" "$@"
fi
exec "$program" "$@"
