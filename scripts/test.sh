#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test suite.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
bash scripts/build.sh
cd "${BUILD_DIR:-build}"
QT_QPA_PLATFORM=offscreen ctest --parallel "$(nproc)" --output-on-failure --timeout 600
