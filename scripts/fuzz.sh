#!/usr/bin/env bash
# Builds the libFuzzer targets with clang into build-fuzz/ (AddressSanitizer and
# UndefinedBehaviorSanitizer on the whole library) and runs each for a while, one after the other:
#   bash scripts/fuzz.sh [seconds-per-target]      (60 by default)
# The seed corpus is made fresh from the service link's real traffic; what the fuzzer adds stays
# in build-fuzz/corpus/, and a crash, a hang or a leak leaves its input in build-fuzz/findings/.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
build_dir=build-fuzz
targets=(fuzz_service_input fuzz_service_requests fuzz_daemon_requests fuzz_web_messages fuzz_supported_drives_file fuzz_scenario_file)

bash scripts/install-deps.sh
# clang and its sanitizer and libFuzzer runtimes, only for this script.
missing=()
for p in clang libclang-rt-14-dev; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo_cmd=()
  [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
  "${sudo_cmd[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
  "${sudo_cmd[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

if [ ! -f "$build_dir/CMakeCache.txt" ]; then
  CC=clang CXX=clang++ cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DKESTRAVIN_BUILD_FUZZERS=ON -DKESTRAVIN_BUILD_TESTS=OFF -DKESTRAVIN_BUILD_BENCHMARKS=OFF
fi
build_targets=()
for t in fuzz_make_corpus "${targets[@]}"; do
  build_targets+=(--target "$t")
done
nice cmake --build "$build_dir" --parallel "$(nproc)" "${build_targets[@]}"

# The targets write logs and scratch files; keep them out of the user's own folders.
root=$(cd "$build_dir" && pwd)
home="$root/fuzz-home"
rm -rf "$home" "$root/seeds" "$root/findings"
mkdir -p "$home"/{config,data,cache,tmp} "$root/findings"
mkdir -m 700 -p "$home/runtime"
export HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" XDG_CACHE_HOME="$home/cache"
export XDG_RUNTIME_DIR="$home/runtime" TMPDIR="$home/tmp" QT_QPA_PLATFORM=offscreen
# Undefined behaviour is a finding like a crash, not a line in the log.
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}
# Only leaks inside Qt itself are passed over, each with its reason in the file.
export LSAN_OPTIONS=suppressions="$PWD/fuzz/lsan.supp"
"$root/bin/fuzz_make_corpus" "$root/seeds"

summary=()
failed=0
for t in "${targets[@]}"; do
  mkdir -p "$root/corpus/$t"
  # The real service takes the same request traffic as the simulated one.
  seeds="$root/seeds/$t"
  [ "$t" = fuzz_daemon_requests ] && seeds="$root/seeds/fuzz_service_requests"
  echo "== $t: ${seconds} s"
  log="$root/findings/$t.log"
  # Qt is built without frame pointers: only the slow unwinder sees past it to the JSON parser's
  # suppression. It costs most of the speed, so only the targets that parse JSON pay for it.
  unwind=1
  case "$t" in fuzz_web_messages | fuzz_scenario_file) unwind=0 ;; esac
  status=0
  ASAN_OPTIONS=${ASAN_OPTIONS:-fast_unwind_on_malloc=$unwind} nice "$root/bin/$t" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 \
    -artifact_prefix="$root/findings/$t-" "$root/corpus/$t" "$seeds" >"$log" 2>&1 || status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  if [ "$status" -eq 0 ]; then
    summary+=("$t: ${runs:-?} executions, nothing found")
  else
    failed=1
    summary+=("$t: ${runs:-?} executions, FOUND something (exit $status), see $log")
    grep -m 3 -E 'ERROR|runtime error|SUMMARY' "$log" || true
  fi
done
printf '%s\n' "${summary[@]}"
exit "$failed"
