#!/usr/bin/env bash
# Refreshes the screenshots of the README: the real program on a virtual screen (Xvfb), against
# the simulated service (the machine of its "migration" scenario) and the simulated back-end,
# driven by mouse and keyboard (xdotool), each page grabbed, scaled down to 960 pixels wide and
# reduced to a palette of 256 colours (pngquant), which keeps a page's flat colours and text sharp
# at a third of the size.
#
#   scripts/screenshots.sh [OUTPUT_DIR]
#
# OUTPUT_DIR defaults to docs/screenshots. SKIP_BUILD=1 uses the build as it is. Everything runs
# with a home, a temporary directory and a display of its own; where the system allows it
# (root, or user namespaces), also in a network of its own, so that the back-end's fixed port
# never meets another copy. Work files stay in /tmp/kestravin-screenshots/.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
output=$(realpath -m "${1:-docs/screenshots}")

if [ -z "${KESTRAVIN_SCREENSHOTS_NETNS:-}" ]; then
  if [ -z "${SKIP_BUILD:-}" ]; then
    bash scripts/install-deps.sh
    bash scripts/build.sh kestravin Kestravin_Service Kestravin_Backend x11probe
  fi
  if unshare --user --map-root-user --net true 2>/dev/null; then
    exec env KESTRAVIN_SCREENSHOTS_NETNS=1 unshare --user --map-root-user --net bash "$0" "$output"
  fi
else
  ip link set lo up
fi

bin=$(cd "${BUILD_DIR:-build}/bin" && pwd)
probe=$bin/x11probe
source tests/realstart/helpers.sh
work=/tmp/kestravin-screenshots
home=$work/home
tmp=$work/tmp
title="KESTRAVIN SSD"
width=1366
height=768

rm -rf "$work"
mkdir -p "$home"/{config,data,cache,runtime} "$tmp" "$work/bin" "$output"
chmod 700 "$home/runtime"
prepare_instance_lock "$home/runtime" "$tmp"
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_CACHE_HOME=$home/cache
export XDG_RUNTIME_DIR=$home/runtime TMPDIR=$tmp QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS

pids=()
cleanup() {
  local pid
  # The service was started by the program; the one whose TMPDIR is ours is ours.
  for pid in "${pids[@]}" $(pgrep -f "^$bin/Kestravin_Service " | while read -r p; do
      tr '\0' '\n' <"/proc/$p/environ" 2>/dev/null | grep -qx "TMPDIR=$tmp" && echo "$p"; done); do
    kill "$pid" 2>/dev/null || true
  done
  sleep 0.5
  for pid in "${pids[@]}"; do kill -KILL "$pid" 2>/dev/null || true; wait "$pid" 2>/dev/null || true; done
  release_instance_lock "$home/runtime" "$tmp"
}
trap cleanup EXIT

Xvfb -displayfd 5 -screen 0 "${width}x${height}x24" -nolisten tcp 5>"$work/display" 2>"$work/xvfb.err" &
pids+=($!)
poll 20000 grep -q '^[0-9]' "$work/display" || { echo "Xvfb did not start" >&2; exit 1; }
export DISPLAY=:$(head -n1 "$work/display")

# No advertisement: it would cover the pages. A fixed captcha text keeps the support page the same.
"$bin/Kestravin_Backend" --quiet --no-ad --captcha-text KSTRV >"$work/backend.out" 2>&1 &
pids+=($!)
poll 20000 grep -qs 'listening on' "$work/backend.out" || { echo "the back-end did not start" >&2; exit 1; }

# The program starts the service that lies beside it; beside this copy lies a stand-in that
# starts the simulated one with the machine of the migration scenario.
cp "$bin/kestravin" "$work/bin/kestravin"
ln -s "$bin/translations" "$work/bin/translations"
printf '#!/bin/sh\nexec %q --scenario migration "$@"\n' "$bin/Kestravin_Service" >"$work/bin/Kestravin_Service"
chmod +x "$work/bin/Kestravin_Service"
"$work/bin/kestravin" >"$work/program.out" 2>&1 &
pids+=($!)

shots_dir=$work
source scripts/window-driving.sh
fit_window "$title" "$width" "$height" || { echo "no window" >&2; exit 1; }
poll 30000 grep -q 'Add drive: 1' "$work/program.out" || { echo "no drive list" >&2; exit 1; }
sleep 2

# Its own shot: smaller pictures, for the README.
shot() {
  # A click in the title area closes a drop-down; the pointer rests there, lighting nothing up.
  xdotool mousemove $((width / 2)) 30 click 1
  sleep "${2:-0.8}"
  "$probe" grab "$work/$1.png" --width 960 >/dev/null
  pngquant --speed 1 --strip --force --output "$output/$1.png" -- "$work/$1.png"
  echo "$output/$1.png"
}
menu_y=87
menu_x() { echo $((width * (2 * $1 + 1) / 10)); } # the five menu groups, from 0
# A click opens a group's drop-down; one in the title area closes what is open first.
open_group() { click $((width / 2)) 30 0.3; click "$(menu_x "$1")" $menu_y 0.6; }
entry_y() { echo $((menu_y + 44 + 40 * $1)); }      # the entries of a group's drop-down, from 0

shot home
click $((width / 2)) 393; xdotool key Down Return
shot drive-status 2
open_group 0; click "$(menu_x 0)" "$(entry_y 1)"
shot smart 2
open_group 0; click "$(menu_x 0)" "$(entry_y 2)"
click $((width / 2)) 30 0.3; click $((width - 141)) $((height - 108))   # START
shot performance 8
click "$(menu_x 3)" $menu_y
shot support 2
click "$(menu_x 2)" $menu_y 1.2
click $((width * 26 / 100)) 250; xdotool key Down Return; sleep 0.6
click $((width * 74 / 100)) 250; xdotool key Down Return; sleep 0.6
shot migration-drives 0.3
lead_on 1.5
shot migration-partitions 9
