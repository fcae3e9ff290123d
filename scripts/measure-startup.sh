#!/usr/bin/env bash
# Measures how fast the program comes up and what it costs at rest, beside GSmartControl (a
# generic S.M.A.R.T. viewer from Debian) and a bare Qt window (an empty QWidget of the main
# window's size, tests/realstart/barewindow.cpp) as the yardsticks, on one virtual X server with a
# tray:
#
#   - time from the process start to its main window mapped (all programs);
#   - for Kestravin, time until the drives of the simulated machine are in its system model (the
#     last "Add drive: " line of its log, whose timestamps have milliseconds);
#   - resident memory after an idle time: VmRSS, PSS and USS (private pages) from smaps_rollup;
#   - wake-ups over that idle time: voluntary and involuntary context switches of all threads.
#
# Kestravin runs three ways: started alone (it starts its simulated service itself, as on a machine
# where the service is stopped), with the service already running (as a system service would be),
# and with -minimized (tray only, starting its service). Each run has a fresh home and temporary
# directory, so runs never share a service or a single-instance lock.
#
# Start-up rounds time the window and the drives. Each program runs alone: it is stopped, with its
# service, before the next one starts, and the order alternates from round to round (Kestravin just
# before or just after the bare window), so that neither a program left running nor the order
# weighs on a figure. The ratio to the bare window is taken within each round and its median
# printed. Rest rounds then start all programs together and measure memory and wake-ups once they
# are at rest. Medians are printed with the goals: window no later than GSmartControl's and within
# twice the bare window's time, drives listed within 0.5 s of the window, resident memory at most
# 80 % of GSmartControl's.
#
#   scripts/measure-startup.sh [-n ROUNDS] [-r REST_ROUNDS] [-i IDLE_SECONDS] [-d DRIVES] [-e VAR=value]...
#
# ROUNDS (start-up rounds) defaults to 20, REST_ROUNDS to 3, IDLE_SECONDS to 60, DRIVES (the drives
# of the default scenario, counted in "Add drive: " lines) to 4. -e adds a variable to Kestravin's
# environment (for example QT_XCB_GL_INTEGRATION=none). SKIP_BUILD=1 uses the build as it is. Raw
# figures go to ${BUILD_DIR:-build}/measure-startup/startup.tsv and rest.tsv.
set -euo pipefail
cd "$(dirname "$0")/.."

rounds=20
rest_rounds=3
idle=60
drives=4
extra_env=()
while getopts "n:r:i:d:e:" option; do
  case $option in
    n) rounds=$OPTARG ;;
    r) rest_rounds=$OPTARG ;;
    i) idle=$OPTARG ;;
    d) drives=$OPTARG ;;
    e) extra_env+=("$OPTARG") ;;
    *) sed -n '2,/^set -euo/p' "$0" | sed '$d'; exit 1 ;;
  esac
done

if [ -z "${SKIP_BUILD:-}" ]; then
  bash scripts/install-deps.sh
  bash scripts/build.sh kestravin Kestravin_Service x11probe barewindow
fi
if ! command -v gsmartcontrol >/dev/null && ! [ -x /usr/sbin/gsmartcontrol ]; then
  sudo_cmd=()
  [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
  "${sudo_cmd[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq gsmartcontrol
fi
gsmartcontrol=$(command -v gsmartcontrol || echo /usr/sbin/gsmartcontrol)

build=$(cd "${BUILD_DIR:-build}" && pwd)
bin=$build/bin
probe=$bin/x11probe
for program in kestravin Kestravin_Service x11probe barewindow; do
  [ -x "$bin/$program" ] || { echo "$bin/$program is not built" >&2; exit 1; }
done
out=$build/measure-startup
rm -rf "$out"
mkdir -p "$out"
tmp_root=/tmp/kvm-$$
source tests/realstart/helpers.sh

POLL_STEP=0.02
# Seconds each program is left alone after its start, before its figures are looked for.
settle=1

# The program starts the service by its full path.
service_pids() { pgrep -f "^$bin/Kestravin_Service( |\$)" || true; }

# Only what this script started: its own children, the programs they run (the launcher is their
# parent, so a pid is checked before it is signalled) and the services in its temporary root.
launched=()
cleanup() {
  local pid
  for pid in $(jobs -p); do
    kill -TERM "$pid" 2>/dev/null || true
  done
  for pid in "${launched[@]}" $(service_pids); do
    tr '\0' '\n' 2>/dev/null <"/proc/$pid/environ" | grep -q "^TMPDIR=$tmp_root/" || continue
    kill -TERM "$pid" 2>/dev/null || true
  done
  wait 2>/dev/null || true
  release_instance_lock "$tmp_root"/* "$out"/*/runtime
  rm -rf "$tmp_root"
}
trap cleanup EXIT
trap 'exit 1' TERM INT HUP

Xvfb -displayfd 5 -screen 0 1280x1024x24 -nolisten tcp 5>"$out/display" 2>"$out/xvfb.err" &
poll 20000 grep -q '^[0-9]' "$out/display" || { echo "Xvfb did not start" >&2; exit 1; }
export DISPLAY=:$(head -n1 "$out/display")
export QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
"$probe" tray >"$out/tray.out" 2>&1 &
poll 10000 grep -q '^tray ' "$out/tray.out" || { echo "no system tray" >&2; exit 1; }

# Per thread, "tid count": its voluntary and involuntary context switches, each a wake-up or a
# preemption. Nothing when the process is gone.
switches() {
  local task
  for task in /proc/"$1"/task/*; do
    awk -v tid="${task##*/}" '/^(voluntary|nonvoluntary)_ctxt_switches:/ {sum += $2; n++}
      END {if (n) print tid, sum}' "$task/status" 2>/dev/null || true
  done
}
# Wake-ups per minute between two samples: the growth of the threads alive at the end (a thread
# born in between counts from zero). Threads that ended in between are missed, so this is a lower
# bound. Nothing if the process was gone at either sample.
per_minute() {
  [ -n "$1" ] && [ -n "$2" ] || return 0
  awk -v idle="$idle" 'NR == FNR {start[$1] = $2; next} {sum += $2 - start[$1]}
    END {printf "%d\n", sum * 60 / idle}' <(echo "$1") <(echo "$2")
}
rss_kb() { awk '/^VmRSS:/ {print $2}' "/proc/$1/status" 2>/dev/null || true; }
pss_kb() { awk '/^Pss:/ {print $2}' "/proc/$1/smaps_rollup" 2>/dev/null || true; }
# Unique set size: the pages no other process maps, independent of what runs beside.
uss_kb() { awk '/^Private_(Clean|Dirty):/ {sum += $2; n++} END {if (n) print sum}' "/proc/$1/smaps_rollup" 2>/dev/null || true; }
# Whether the process has loaded an OpenGL driver (Mesa's, with LLVM, under Xvfb).
gl_loaded() {
  [ -r "/proc/$1/maps" ] || return 0
  grep -qE '/dri/|libLLVM' "/proc/$1/maps" 2>/dev/null && echo yes || echo no
}

# The service a Kestravin run started: the one whose TMPDIR is that run's.
service_of() {
  local pid
  for pid in $(service_pids); do
    tr '\0' '\n' 2>/dev/null <"/proc/$pid/environ" | grep -qx "TMPDIR=$1" && echo "$pid"
  done
  return 0
}

# Epoch milliseconds of the last "Add drive: " line, once the log has the expected number.
drives_epoch_ms() {
  local log=$1
  local count
  count=$(grep -c 'Add drive: ' "$log" 2>/dev/null || true)
  [ "${count:-0}" -ge "$drives" ] || return 1
  local stamp
  stamp=$(grep 'Add drive: ' "$log" | sed -n "${drives}p" | awk '{print $1, $2}')
  # "yyyy/MM/dd hh:mm:ss:zzz", local time
  local seconds
  seconds=$(date -d "$(echo "${stamp%:*}" | tr / -)" +%s)
  echo $((seconds * 1000 + 10#${stamp##*:}))
}

# Starts one program in a fresh home; sets run_pid and run_out.
start_run() {
  local tag=$1 title=$2
  shift 2
  local home=$out/$tag
  mkdir -p "$home"/{config,data,cache,runtime} "$tmp_root/$tag"
  chmod 700 "$home/runtime"
  prepare_instance_lock "$home/runtime" "$tmp_root/$tag"
  run_out=$out/$tag.out
  local watch=()
  [ -n "$title" ] && watch=(--title "$title" --timeout-ms 60000)
  env HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" XDG_CACHE_HOME="$home/cache" \
    XDG_RUNTIME_DIR="$home/runtime" TMPDIR="$tmp_root/$tag" \
    "$probe" launch "${watch[@]}" -- "$@" >"$run_out" 2>"$out/$tag.err" &
  # Hands off while the program starts: polling forks three processes every step, which would
  # compete with it for the cores. The probe takes the times itself; they are read afterwards.
  sleep "$settle"
  poll 10000 grep -q '^pid ' "$run_out" || { echo "$tag did not start" >&2; exit 1; }
  run_pid=$(awk '$1 == "pid" {print $2; exit}' "$run_out")
  launched+=("$run_pid")
}

field() { awk -v key="$2" '$1 == key {print $2; exit}' "$1"; }

window_ms() {
  poll 60000 grep -qE '^(mapped_ms|timeout|exit) ' "$1" || true
  field "$1" mapped_ms
}

# Starts one program of round $1 and waits for its window and its drives; sets pid, window,
# drives_at and service for it.
run_program() {
  local round=$1 program=$2 tag=r$1-$2 log
  case $program in
    kestravin) start_run "$tag" "KESTRAVIN SSD" env "${extra_env[@]}" "$bin/kestravin" ;;
    minimized) start_run "$tag" "" env "${extra_env[@]}" "$bin/kestravin" -minimized ;;
    gsmartcontrol) start_run "$tag" "GSmartControl" "$gsmartcontrol" ;;
    # The program turns Qt's OpenGL integration off for itself; the yardstick runs the same way,
    # or the driver it loads would be most of its time.
    bare) start_run "$tag" "BARE WINDOW" env QT_XCB_GL_INTEGRATION=none "$bin/barewindow" ;;
    warm)
      # The service is up before the program starts, as a system service would be.
      mkdir -p "$tmp_root/$tag"
      env TMPDIR="$tmp_root/$tag" HOME="$out/$tag-service" XDG_DATA_HOME="$out/$tag-service/data" \
        "$bin/Kestravin_Service" --name VelmoraServer --quiet >"$out/$tag-service.out" 2>&1 &
      poll 30000 grep -q '^Listening on ' "$out/$tag-service.out" || { echo "the service did not listen" >&2; exit 1; }
      start_run "$tag" "KESTRAVIN SSD" env "${extra_env[@]}" "$bin/kestravin"
      ;;
  esac
  pid[$program]=$run_pid
  local begin
  begin=$(field "$run_out" start_epoch_ms)
  if [ "$program" != minimized ]; then
    window[$program]=$(window_ms "$run_out")
    [ -n "${window[$program]}" ] || echo "  $program showed no window (see $run_out)" >&2
  fi
  if [ "$program" != gsmartcontrol ] && [ "$program" != bare ]; then
    log=$out/$tag/data/BRANTEL/KESTRAVIN/Velmora.log
    if poll 60000 drives_epoch_ms "$log" >/dev/null; then
      drives_at[$program]=$(($(drives_epoch_ms "$log") - begin))
    else
      echo "  $program: fewer than $drives drives in $log" >&2
    fi
    service[$program]=$(service_of "$tmp_root/$tag")
  fi
}

# Stops the programs of round $1 that are named after it, with their services, and waits until
# they are gone.
stop_programs() {
  local round=$1 program p
  shift
  for program in "$@"; do
    kill -TERM "${pid[$program]}" ${service[$program]:-} 2>/dev/null || true
  done
  local wait_deadline=$(($(now_ms) + 10000))
  for program in "$@"; do
    for p in ${pid[$program]} ${service[$program]:-}; do
      while kill -0 "$p" 2>/dev/null && [ "$(now_ms)" -lt "$wait_deadline" ]; do sleep 0.05; done
      if kill -0 "$p" 2>/dev/null; then kill -KILL "$p" || true; fi
    done
  done
  for program in "$@"; do
    release_instance_lock "$tmp_root/r$round-$program" "$out/r$round-$program/runtime"
  done
}

echo "Machine: $(nproc) cores; load before: $(cut -d' ' -f1-3 /proc/loadavg)" | tee "$out/machine.txt"
startup=$out/startup.tsv
rest=$out/rest.tsv
printf 'round\tprogram\twindow_ms\tdrives_ms\n' >"$startup"
printf 'round\tprogram\trss_kb\tpss_kb\tuss_kb\tgl\twakeups\tservice_rss_kb\tservice_pss_kb\tservice_wakeups\n' >"$rest"

programs=(kestravin warm minimized gsmartcontrol bare)
for round in $(seq 1 "$rounds"); do
  echo "Start-up round $round of $rounds ..."
  declare -A pid=() window=() drives_at=() service=()
  order=(kestravin bare warm gsmartcontrol minimized)
  [ $((round % 2)) -eq 0 ] && order=(bare kestravin gsmartcontrol warm minimized)
  for program in "${order[@]}"; do
    run_program "$round" "$program"
    stop_programs "$round" "$program"
    printf '%s\t%s\t%s\t%s\n' "$round" "$program" "${window[$program]:-}" "${drives_at[$program]:-}" >>"$startup"
  done
  unset pid window drives_at service
done

for round in $(seq 1 "$rest_rounds"); do
  echo "Rest round $round of $rest_rounds ..."
  round=rest$round
  declare -A pid=() window=() drives_at=() service=() before=()
  for program in "${programs[@]}"; do
    run_program "$round" "$program"
  done
  # All at rest together; each process is measured on its own.
  for program in "${programs[@]}"; do
    before[$program]=$(switches "${pid[$program]}")
    [ -n "${service[$program]:-}" ] && before[$program-service]=$(switches "${service[$program]}")
  done
  sleep "$idle"
  for program in "${programs[@]}"; do
    p=${pid[$program]}
    wake=$(per_minute "${before[$program]}" "$(switches "$p")")
    s=${service[$program]:-}
    if [ -n "$s" ]; then
      swake=$(per_minute "${before[$program-service]:-}" "$(switches "$s")")
      srss=$(rss_kb "$s") spss=$(pss_kb "$s")
    else
      swake= srss= spss=
    fi
    [ -n "$wake" ] || echo "  $program ended before the idle time was over" >&2
    printf '%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\n' "$round" "$program" "$(rss_kb "$p")" "$(pss_kb "$p")" \
      "$(uss_kb "$p")" "$(gl_loaded "$p")" "$wake" "$srss" "$spss" "$swake" >>"$rest"
  done
  stop_programs "$round" "${programs[@]}"
  unset pid window drives_at service before
done

echo "Load after: $(cut -d' ' -f1-3 /proc/loadavg)" | tee -a "$out/machine.txt"

# Median of one column of a table for one program ("-" when there is no figure).
median() {
  awk -F'\t' -v program="$2" -v column="$(col "$1" "$3")" '
    NR > 1 && $2 == program && $column != "" {print $column}' "$1" | median_of
}
median_of() {
  sort -n | awk '{v[NR] = $1} END {
    if (NR == 0) {print "-"; exit}
    if (NR % 2) print v[(NR + 1) / 2]; else printf "%.1f\n", (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}
col() { head -n1 "$1" | tr '\t' '\n' | grep -nx "$2" | cut -d: -f1; }
mib() { [ "$1" = - ] && echo - || awk -v k="$1" 'BEGIN {printf "%.1f", k / 1024}'; }
ratio() { { [ "$1" = - ] || [ "$2" = - ]; } && echo - || awk -v a="$1" -v b="$2" 'BEGIN {printf "%.2f", a / b}'; }
verdict() { [ "$1" = - ] && echo "?" || awk -v r="$1" -v goal="$2" 'BEGIN {print (r <= goal) ? "met" : "MISSED"}'; }
# Median over the rounds of (drives listed - window mapped) for one program.
gap() {
  awk -F'\t' -v program="$1" 'NR > 1 && $2 == program && $3 != "" && $4 != "" {print $4 - $3}' "$startup" | median_of
}
# Median over the start-up rounds of the window time of program $1 divided by program $2's in
# the same round.
paired_ratio() {
  awk -F'\t' -v a="$1" -v b="$2" 'NR > 1 && $3 != "" {w[$1, $2] = $3; r[$1] = 1}
    END {for (i in r) if ((i, a) in w && (i, b) in w && w[i, b] > 0) printf "%.4f\n", w[i, a] / w[i, b]}' \
    "$startup" | median_of | awk '$1 == "-" {print; next} {printf "%.2f\n", $1}'
}

declare -A m
for program in "${programs[@]}"; do
  for metric in window_ms drives_ms; do
    m[$program,$metric]=$(median "$startup" "$program" "$metric")
  done
  for metric in rss_kb pss_kb uss_kb wakeups service_rss_kb service_pss_kb service_wakeups; do
    m[$program,$metric]=$(median "$rest" "$program" "$metric")
  done
  m[$program,gap]=$(gap "$program")
done

row() {
  local label=$1 metric=$2 format=${3:-} program value
  printf '%-34s' "$label"
  for program in "${programs[@]}"; do
    value=${m[$program,$metric]}
    [ "$format" = mib ] && value=$(mib "$value")
    printf ' %14s' "$value"
  done
  echo
}

{
  echo
  echo "Medians of $rounds start-up rounds (each program alone) and $rest_rounds rest rounds (all together,"
  echo "${idle} s idle). Window: the X map event, read as it arrives (well under 1 ms); drives: log"
  echo "timestamps (1 ms). Memory and wake-ups: the GUI process; its simulated service apart."
  echo
  printf '%-34s %14s %14s %14s %14s %14s\n' "" "Kestravin" "K., svc up" "K. -minimized" "GSmartControl" "bare window"
  row "window mapped (ms from start)" window_ms
  row "drives listed (ms from start)" drives_ms
  row "drives listed after window (ms)" gap
  row "VmRSS after idle (MiB)" rss_kb mib
  row "PSS after idle (MiB)" pss_kb mib
  row "USS after idle (MiB)" uss_kb mib
  printf '%-34s' "OpenGL driver loaded (rounds)"
  for program in "${programs[@]}"; do
    printf ' %14s' "$(awk -F'\t' -v p="$program" 'NR > 1 && $2 == p && $6 == "yes" {n++} END {print n + 0}' "$rest")/$rest_rounds"
  done
  echo
  row "wake-ups per minute, idle" wakeups
  row "service (sim) VmRSS (MiB)" service_rss_kb mib
  row "service (sim) PSS (MiB)" service_pss_kb mib
  row "service (sim) wake-ups per minute" service_wakeups
  echo
  echo "Goals (Kestravin starting its service; in brackets with the service already running). Window"
  echo "ratios are medians of the ratios within each round:"
  r=$(paired_ratio kestravin gsmartcontrol)
  rw=$(paired_ratio warm gsmartcontrol)
  echo "  window no later than GSmartControl's: ratio $r <= 1.00 $(verdict "$r" 1.0) ($rw $(verdict "$rw" 1.0))"
  r=$(paired_ratio kestravin bare)
  rw=$(paired_ratio warm bare)
  echo "  window within twice the bare window's: ratio $r <= 2.00 $(verdict "$r" 2.0) ($rw $(verdict "$rw" 2.0))"
  echo "  drives within 0.5 s of the window: ${m[kestravin,gap]} ms $(verdict "${m[kestravin,gap]}" 500)" \
    "(${m[warm,gap]} ms $(verdict "${m[warm,gap]}" 500))"
  for metric in rss_kb pss_kb uss_kb; do
    r=$(ratio "${m[kestravin,$metric]}" "${m[gsmartcontrol,$metric]}")
    rw=$(ratio "${m[warm,$metric]}" "${m[gsmartcontrol,$metric]}")
    rm_=$(ratio "${m[minimized,$metric]}" "${m[gsmartcontrol,$metric]}")
    echo "  ${metric%_kb} at most 80 % of GSmartControl's: ratio $r $(verdict "$r" 0.8) ($rw $(verdict "$rw" 0.8));" \
      "minimized $rm_ $(verdict "$rm_" 0.8)"
  done
  echo
  cat "$out/machine.txt"
  echo "Raw figures: $startup and $rest"
} | tee "$out/summary.txt"
