#!/usr/bin/env bash
# Configures and builds into ${BUILD_DIR:-build}: the targets given as arguments, or everything
# (program, simulators, tests, benchmarks). Used by run.sh and test.sh.
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
targets=()
for target in "$@"; do
  targets+=(--target "$target")
done
cmake --build "$build_dir" --parallel "$(nproc)" "${targets[@]}"
