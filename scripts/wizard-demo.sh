#!/usr/bin/env bash
# The migration wizard run as a user runs it: the program and the simulated service as separate
# processes on a virtual screen, driven by mouse and keyboard (xdotool), with a screenshot of
# every page. Needs a build of kestravin, Kestravin_Service and x11probe.
#
#   scripts/wizard-demo.sh <run> [WIDTHxHEIGHT] [LANGUAGE]
#
# Runs: plan    drives chosen, estimation, filters of D: (a folder and a file type unchecked,
#               applied), D: shrunk until its lamp turns bad and back, warning, START, progress,
#               finish page with the faulted files of D:
#       cancel  the same road, cancelled during the copy, HOME afterwards
#       fail    formatting the second partition fails; the error page, then HOME
#       unplug  the destination pulled while partitions are being created
# LANGUAGE is en (the default), pl, ru or uk. Screenshots and logs go to
# /tmp/wizard-demo/<run>-<size>[-<language>]/.
set -u
cd "$(dirname "$0")/.."
run=${1:-plan}
size=${2:-1366x768}
language=${3:-en}
bin=$(cd "${BUILD_DIR:-build}/bin" && pwd)
probe=$bin/x11probe
source tests/realstart/helpers.sh
work=/tmp/wizard-demo/$run-$size
[ "$language" = en ] || work=$work-$language
tmp=$work/tmp
title="KESTRAVIN SSD"

case $run in
  plan) faults=(--scan-step-ms 700 --filter-steps 6) ;;
  cancel) faults=(--copy-step-ms 1500) ;;
  fail) faults=(--fail "PartitionFormat#2=3") ;;
  unplug) faults=(--unplug "1@PartitionCreate#2" --task-ms 700) ;;
  *) echo "unknown run $run" >&2; exit 1 ;;
esac

rm -rf "$work"
mkdir -p "$work"/home/{config,data,cache,runtime} "$tmp"
chmod 700 "$work/home/runtime"
mkdir -p "$work/home/config/BRANTEL"
printf '[Application]\nLanguage=%s\n' "$language" >"$work/home/config/BRANTEL/KESTRAVIN.conf"
prepare_instance_lock "$work/home/runtime" "$tmp" || exit 1
export HOME=$work/home XDG_CONFIG_HOME=$work/home/config XDG_DATA_HOME=$work/home/data
export XDG_CACHE_HOME=$work/home/cache XDG_RUNTIME_DIR=$work/home/runtime TMPDIR=$tmp QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS

pids=()
cleanup() {
  local pid
  # The service was started by the program and ends with it; what is left of it is ours alone.
  for pid in "${pids[@]}" $(pgrep -f "^$bin/Kestravin_Service --scenario migration .*--name VelmoraServer" | while read -r p; do
      tr '\0' '\n' <"/proc/$p/environ" 2>/dev/null | grep -qx "TMPDIR=$tmp" && echo "$p"; done); do
    kill "$pid" 2>/dev/null
  done
  sleep 0.5
  for pid in "${pids[@]}"; do kill -KILL "$pid" 2>/dev/null; wait "$pid" 2>/dev/null; done
  release_instance_lock "$work/home/runtime" "$tmp"
}
trap cleanup EXIT

Xvfb -displayfd 5 -screen 0 "${size}x24" -nolisten tcp 5>"$work/display" 2>"$work/xvfb.err" &
pids+=($!)
poll 20000 grep -q '^[0-9]' "$work/display" || { echo "Xvfb did not start"; exit 1; }
export DISPLAY=:$(head -n1 "$work/display")

# The program starts the service that lies beside it, as on a user's machine. Beside a copy of
# the program lies a stand-in that starts the simulated one with this run's machine and faults.
mkdir -p "$work/bin"
cp "$bin/kestravin" "$work/bin/kestravin"
ln -s "$bin/translations" "$work/bin/translations"
{
  echo '#!/bin/sh'
  printf 'exec %q --scenario migration' "$bin/Kestravin_Service"
  printf ' %q' "${faults[@]}"
  echo ' "$@"'
} >"$work/bin/Kestravin_Service"
chmod +x "$work/bin/Kestravin_Service"
"$work/bin/kestravin" >"$work/program.out" 2>&1 &
pids+=($!)

shots_dir=$work
source scripts/window-driving.sh
fit_window "$title" "${size%x*}" "${size#*x}" || { echo "no window"; exit 1; }
# The home page lists the drives once the service has sent them and the machine's summary.
poll 30000 grep -q 'Add drive: 1' "$work/program.out" || { echo "no drive list"; exit 1; }
sleep 2

# HOLD=seconds keeps the session open after the script's road, for a look by hand.
hold() { [ -z "${HOLD:-}" ] || sleep "$HOLD"; }

row_y() { echo $((358 + 39 * $1)); }                    # rows of the partition list, from 0

choose_migration_drives
lead_on 1.5
shot estimation 0.2
sleep 9
shot partitions

if [ "$run" = plan ]; then
  click $((W - 168)) "$(row_y 3)" 1.2                   # EXCLUDE FILES... of D:
  click 52 347 1                                        # open Photos
  click 72 296 0.6                                      # leave Backups behind
  shot filters-tree
  click 254 191 0.6                                     # FILE TYPES
  click 48 252 0.4                                      # no VIDEO
  shot filters-types
  lead_on 0.8                                           # APPLY
  shot applied-calculating 0.2
  sleep 6
  shot applied
  click $((W - 356)) "$(row_y 3)" 0.2; xdotool key ctrl+a type 3000; xdotool key Return
  shot shrunk-bad
  click $((W - 356)) "$(row_y 3)" 0.2; xdotool key ctrl+a type 20000; xdotool key Return
  shot shrunk-good
fi

lead_on 1                                                # NEXT
shot warning
lead_on 1.5                                              # START
shot progress
case $run in
  cancel)
    sleep 4
    shot copying
    lead_on 0.3                                          # CANCEL
    shot cancel-pressed 0.2
    sleep 3 ;;
  *) sleep 10 ;;
esac
shot end
lead_on 1.5                                              # HOME
shot home
hold
