#!/usr/bin/env bash
# Configures and builds everything (program, simulated service, tests, benchmarks) into
# ${BUILD_DIR:-build}. Used by run.sh and test.sh.
set -euo pipefail
cd "$(dirname "$0")/.."

build_dir=${BUILD_DIR:-build}
generator=()
if command -v ninja >/dev/null 2>&1; then
  generator=(-G Ninja)
fi
if [ ! -f "$build_dir/CMakeCache.txt" ]; then
  cmake -S . -B "$build_dir" "${generator[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build "$build_dir" --parallel "$(nproc)"
