#!/usr/bin/env bash
# Installs what is missing, builds the program, both simulators and every test with
# AddressSanitizer, LeakSanitizer and UndefinedBehaviorSanitizer into ${BUILD_DIR:-build-asan},
# and runs every test. The first report ends the process that made it; any report, also one from
# a program a test started, fails the run.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

build_dir=${BUILD_DIR:-build-asan}
generator=()
if command -v ninja >/dev/null 2>&1; then
  generator=(-G Ninja)
fi
if [ ! -f "$build_dir/CMakeCache.txt" ]; then
  cmake -S . -B "$build_dir" "${generator[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DKESTRAVIN_SANITIZE=ON -DKESTRAVIN_BUILD_BENCHMARKS=OFF
fi
nice cmake --build "$build_dir" --parallel "$(nproc)"

# Reports go to files rather than stderr, so that a program whose output a test reads is not
# disturbed, and so that a report from a child process cannot go unnoticed.
reports=$(cd "$build_dir" && pwd)/sanitizer-reports
rm -rf "$reports"
mkdir -p "$reports"
# Qt's libraries have no frame pointers: only the slow unwinder sees through them to the frames
# that the leak suppressions name.
export ASAN_OPTIONS="halt_on_error=1:detect_leaks=1:fast_unwind_on_malloc=0:log_path=$reports/asan"
export LSAN_OPTIONS="suppressions=$PWD/scripts/lsan-suppressions.txt:print_suppressions=0"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1:log_path=$reports/ubsan"

status=0
(cd "$build_dir" && QT_QPA_PLATFORM=offscreen ctest --parallel "$(nproc)" --output-on-failure --timeout 1200) ||
  status=$?

if compgen -G "$reports/*" >/dev/null; then
  for report in "$reports"/*; do
    echo "=== $report"
    cat "$report"
  done
  echo "Sanitizer reports: $(ls "$reports" | wc -l)" >&2
  exit 1
fi
echo "Sanitizer reports: 0"
exit "$status"
