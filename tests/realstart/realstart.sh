#!/usr/bin/env bash
# The program started for real, the way a user starts it: on a virtual X server with a system
# tray, in a home of its own. It must start the service beside it, show its window, get the drive
# list, keep a single instance (a second start ends at once and brings the first one's window
# back), and end through the tray menu's Quit. Then twenty starts at once: one runs, the others end
# with 0; a second user gets a program of their own; and no lock object outlives them all.
#
#   realstart.sh <bin dir> <work dir> <temporary dir>
#
# Leaves the screenshot and the logs in the work dir. Every wait polls up to a
# generous limit, so that a loaded machine only makes the test slower.
set -u

bin=$(cd "$1" && pwd)
work=$2
tmp=$3
title="KESTRAVIN SSD"
probe=$bin/x11probe
source "$(dirname "$0")/helpers.sh"

test_start=$(now_ms)
elapsed() { printf '%5.1f s' "$(( $(now_ms) - test_start ))e-3"; }

failures=0
ok() { echo "ok    $(elapsed)  $*"; }
fail() { echo "FAIL  $(elapsed)  $*"; failures=$((failures + 1)); }
note() { echo "note  $(elapsed)  $*"; }


alive() { kill -0 "$1" 2>/dev/null && [ "$(awk '{print $3}' "/proc/$1/stat" 2>/dev/null)" != Z ]; }
gone() { ! alive "$1"; }
has_service() { [ -n "$(our_processes Kestravin_Service)" ]; }
no_service() { ! has_service; }
none_left() { [ -z "$(our_processes kestravin)$(our_processes Kestravin_Service)" ]; }

# Processes started from this test's build whose environment carries this test's TMPDIR: the
# program and the service it started, and nothing of other tests or users.
our_processes() {
  local name=$1 pid
  # Both are started by their full path: the program by this test, the service by the program.
  for pid in $(pgrep -f "^$bin/$name( |\$)"); do
    [ "$(readlink "/proc/$pid/exe" 2>/dev/null)" = "$bin/$name" ] || continue
    alive "$pid" || continue
    tr '\0' '\n' 2>/dev/null <"/proc/$pid/environ" | grep -qx "TMPDIR=$tmp" && echo "$pid"
  done
}

# What an earlier, interrupted run may have left: only processes of this build and this TMPDIR.
for pid in $(our_processes kestravin) $(our_processes Kestravin_Service); do
  kill -KILL "$pid" 2>/dev/null
done
release_instance_lock "$tmp" "$tmp"/runtime*
rm -rf "$work" "$tmp"
# The runtime folders hold sockets: they lie in the short temporary folder.
mkdir -p "$work"/home/{config,data,cache} "$tmp"/runtime
chmod 700 "$tmp/runtime"
prepare_instance_lock "$tmp/runtime" "$tmp" || exit 1
export HOME=$work/home
export XDG_CONFIG_HOME=$HOME/config XDG_DATA_HOME=$HOME/data XDG_CACHE_HOME=$HOME/cache
export XDG_RUNTIME_DIR=$tmp/runtime TMPDIR=$tmp
# A system service running on this machine must not stand in for the simulated one under test.
export KESTRAVIN_SERVICE=simulated
export QT_QPA_PLATFORM=xcb
# No desktop bus: the tray icon goes to the X system tray below, as on a desktop without one.
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
log=$XDG_DATA_HOME/BRANTEL/KESTRAVIN/Velmora.log

xvfb_pid= tray_pid= first_launcher= first_pid=
cleanup() {
  local pid
  for pid in $first_pid $(our_processes kestravin) $(our_processes Kestravin_Service); do
    kill -KILL "$pid" 2>/dev/null
  done
  [ -n "$first_launcher" ] && wait "$first_launcher" 2>/dev/null
  [ -n "$tray_pid" ] && kill "$tray_pid" 2>/dev/null && wait "$tray_pid" 2>/dev/null
  if [ -n "$xvfb_pid" ]; then
    kill "$xvfb_pid" 2>/dev/null
    poll 5000 gone "$xvfb_pid" || kill -KILL "$xvfb_pid" 2>/dev/null
    wait "$xvfb_pid" 2>/dev/null
  fi
  poll 5000 none_left
  release_instance_lock "$tmp" "$tmp"/runtime*
  rm -rf "$tmp"
}
trap cleanup EXIT
trap 'exit 1' TERM INT HUP

for tool in Xvfb xprop xdotool; do
  command -v "$tool" >/dev/null || { echo "FAIL  $tool is not installed (scripts/install-deps.sh)"; exit 1; }
done
for program in kestravin Kestravin_Service x11probe; do
  [ -x "$bin/$program" ] || { echo "FAIL  $bin/$program is not built"; exit 1; }
done

# --- A virtual screen of its own, and a system tray on it -------------------------------------
Xvfb -displayfd 5 -screen 0 1280x1024x24 -nolisten tcp 5>"$work/display" 2>"$work/xvfb.err" &
xvfb_pid=$!
if ! poll 20000 grep -q '^[0-9]' "$work/display"; then
  echo "FAIL  Xvfb did not start: $(cat "$work/xvfb.err")"
  exit 1
fi
export DISPLAY=:$(head -n1 "$work/display")
"$probe" tray >"$work/tray.out" 2>"$work/tray.err" &
tray_pid=$!
poll 10000 grep -q '^tray ' "$work/tray.out" || { echo "FAIL  no system tray: $(cat "$work/tray.err")"; exit 1; }

# --- First start -------------------------------------------------------------------------------
"$probe" launch --title "$title" --timeout-ms 30000 -- "$bin/kestravin" >"$work/first.out" 2>"$work/first.err" &
first_launcher=$!
poll 5000 grep -q '^pid ' "$work/first.out"
first_pid=$(awk '$1 == "pid" {print $2}' "$work/first.out")
[ -n "$first_pid" ] || { echo "FAIL  the program could not be started"; exit 1; }

if poll 15000 has_service; then
  ok "the program started the service beside it (pid $(echo $(our_processes Kestravin_Service)))"
else
  fail "no Kestravin_Service process came up"
fi
if poll 15000 test -S "$tmp/VelmoraServer"; then
  ok "the service listens on $tmp/VelmoraServer"
else
  fail "no service socket in $tmp"
fi

poll 30000 grep -qE '^(mapped_ms|timeout|exit) ' "$work/first.out"
window=$(awk '$1 == "window" {print $2}' "$work/first.out")
if [ -n "$window" ]; then
  ok "window \"$title\" mapped $(awk '$1 == "mapped_ms" {print $2}' "$work/first.out") ms after the start"
  name=$(xprop -id "$window" _NET_WM_NAME 2>/dev/null | sed -n 's/^_NET_WM_NAME(UTF8_STRING) = "\(.*\)"$/\1/p')
  [ "$name" = "$title" ] && ok "the window's title is exactly \"$title\"" || fail "window title is \"$name\""
  # The window draws its own frame: it asks window managers for no decorations.
  # Motif hints: flags, functions, decorations...; flag 2 says the decorations field counts.
  hints=$(xprop -id "$window" _MOTIF_WM_HINTS 2>/dev/null | sed -n 's/^.*= //p' | tr -d ' ')
  if [ -n "$hints" ] && (( $(cut -d, -f1 <<<"$hints") & 2 )) && (( $(cut -d, -f3 <<<"$hints") == 0 )); then
    ok "the window asks for no window manager frame"
  else
    fail "the window does not ask to be frameless: $(xprop -id "$window" _MOTIF_WM_HINTS 2>&1)"
  fi
else
  fail "no window \"$title\" within 30 s ($(tr '\n' ' ' <"$work/first.out" | grep -oE '(timeout|exit [0-9]+)'))"
fi

grep -qF 'Starting application: 1.1.4 [1.1.4-]' "$log" && ok "the start-up line names the version" \
  || fail "no \"Starting application: 1.1.4 [1.1.4-]\" in the log: $(grep -m1 'Starting application' "$log")"

# The drive list travels from the service to the program's system model.
if poll 15000 grep -q 'Add drive: ' "$log"; then
  ok "the program received the drive list: $(grep -c 'Add drive: ' "$log") drives added"
else
  fail "no drive was added within 15 s (log: $log)"
fi

if poll 10000 grep -q '^docked ' "$work/tray.out"; then
  ok "the tray icon docked in the system tray"
else
  fail "the program put no icon into the system tray"
fi

# --- Screenshot ----------------------------------------------------------------------------------
# A frame may still be on its way: a blank grab is retried for a while before it counts. Only
# the window's own pixels count, not the tray's.
screen_ok() {
  "$probe" grab "$work/screen.png" --title "$title" >"$work/grab.out" 2>"$work/grab.err" || return 1
  [ "$(awk '$1 == "colours" {print $2}' "$work/grab.out")" -gt 16 ]
}
if poll 10000 screen_ok; then
  ok "screenshot $work/screen.png: $(tr '\n' ' ' <"$work/grab.out")"
else
  fail "the screen stays blank: $(cat "$work/grab.out" "$work/grab.err" 2>/dev/null | tr '\n' ' ')"
fi

# --- Closing hides, a second start brings the window back ---------------------------------------
"$probe" close --title "$title"
if "$probe" wait --title "$title" --state unmapped --timeout-ms 10000 >/dev/null; then
  alive "$first_pid" && ok "closing the window hides it and the program keeps running" \
    || fail "closing the window ended the program"
else
  fail "the window is still shown after it was asked to close"
fi

other_before=$(grep -c 'Other instance detected. Shutting down.' "$log")
second_start=$(now_ms)
timeout 20 "$bin/kestravin" >"$work/second.out" 2>&1
second_rc=$?
second_ms=$(($(now_ms) - second_start))
if [ "$second_rc" -eq 0 ] && [ "$second_ms" -le 10000 ]; then
  ok "a second start ended with 0 after $second_ms ms"
else
  fail "a second start ended with $second_rc after $second_ms ms"
fi
other_after=$(grep -c 'Other instance detected. Shutting down.' "$log")
[ "$other_after" -eq $((other_before + 1)) ] && ok "the second start logged that another instance runs" \
  || fail "the second start did not log \"Other instance detected. Shutting down.\""
if shown=$("$probe" wait --title "$title" --state mapped --timeout-ms 10000); then
  owner=$(xprop -id "$(awk '{print $2}' <<<"$shown")" _NET_WM_PID 2>/dev/null | awk '{print $3}')
  [ "$owner" = "$first_pid" ] && ok "the second start brought the first one's window back" \
    || fail "the window shown after the second start belongs to pid $owner, not to the first instance"
else
  fail "the first one's window stayed hidden after a second start"
fi
alive "$first_pid" && ok "the first instance still runs" || fail "the first instance is gone"
services=$(our_processes Kestravin_Service | wc -l)
[ "$services" -eq 1 ] && ok "still one service process" || fail "$services service processes after the second start"

# --- Quit through the tray menu ---------------------------------------------------------------
menu_open() { "$probe" wait --type POPUP_MENU --state mapped --timeout-ms "$1" >/dev/null; }
# Chooses Quit in the menu of the tray icon $1 and waits for the program $2 to end.
quit_through_tray() {
  local attempt
  [ -n "$1" ] || return 1
  # The menu takes the keyboard just after it appears: keys that came too early are sent again.
  for attempt in 1 2 3; do
    if ! menu_open 0; then
      xdotool mousemove --window "$1" 12 12 click 3 2>>"$work/xdotool.err"
      menu_open 5000 || continue
    fi
    # Quit is the menu's last entry.
    xdotool key Up Return 2>>"$work/xdotool.err"
    poll 5000 gone "$2" && return 0
  done
  poll 15000 gone "$2"
}
# The tray icon of the program $1 (later starts dock theirs too, for the moment they live).
icon_of() {
  local id
  for id in $(awk '$1 == "docked" {print $2}' "$work/tray.out"); do
    [ "$(xprop -id "$id" _NET_WM_PID 2>/dev/null | awk '{print $3}')" = "$1" ] && echo "$id" && return 0
  done
  return 1
}
poll 10000 icon_of "$first_pid" >/dev/null
if quit_through_tray "$(icon_of "$first_pid")" "$first_pid" && poll 5000 grep -q '^exit ' "$work/first.out"; then
  code=$(awk '$1 == "exit" {print $2}' "$work/first.out")
  [ "$code" -eq 0 ] && ok "Quit in the tray menu ended the program with 0" || fail "Quit ended the program with $code"
  grep -q 'Closing application' "$log" && ok "the program logged \"Closing application\"" \
    || fail "no \"Closing application\" in the log"
  first_pid=
else
  fail "the tray menu's Quit did not end the program; stopping it with SIGKILL"
fi
[ -n "$first_pid" ] && kill -KILL "$first_pid" 2>/dev/null
first_pid=

# --- Twenty starts at once by one user ----------------------------------------------------------
prepare_instance_lock "$tmp/runtime" "$tmp" || exit 1
storm=() storm_began=$(now_ms)
for i in $(seq 20); do "$bin/kestravin" >"$work/storm.$i.out" 2>&1 & storm+=($!); done
running() { local pid; for pid in "${storm[@]}"; do alive "$pid" && echo "$pid"; done; }
one_running() { [ "$(running | wc -l)" -eq 1 ]; }
if poll 60000 one_running; then
  winner=$(running)
  ok "of twenty starts at once, one runs (pid $winner) after $(($(now_ms) - storm_began)) ms"
else
  fail "$(running | wc -l) of twenty starts at once still run after 60 s"
  winner=$(running | head -n1)
fi
codes=()
for pid in "${storm[@]}"; do [ "$pid" = "$winner" ] || { wait "$pid"; codes+=($?); }; done
codes=$(printf '%s\n' "${codes[@]}" | sort | uniq -c | xargs)
[ "$codes" = "19 0" ] && ok "the other nineteen ended with 0" || fail "exit codes of the others (count code): $codes"
if shown=$("$probe" wait --title "$title" --state mapped --timeout-ms 30000); then
  owner=$(xprop -id "$(awk '{print $2}' <<<"$shown")" _NET_WM_PID 2>/dev/null | awk '{print $3}')
  [ "$owner" = "$winner" ] && ok "the running one shows its window" || fail "the window shown belongs to pid $owner"
else
  fail "no window after twenty starts at once"
fi
# Their keys are taken now, while the files are there; they must be free again at the end.
lock_keys=$(for file in $(instance_lock_files "$XDG_RUNTIME_DIR" "$tmp"); do [ -e "$file" ] && ipc_key "$file" && echo; done)

# --- A second user ----------------------------------------------------------------------------
# Users differ to the program by their home and runtime folder; the lock's names come from the
# latter alone. TMPDIR stays shared, as /tmp and the service are on a real machine.
user2=$work/home2
mkdir -p "$user2"/{config/BRANTEL,data,cache} "$tmp/runtime2" && chmod 700 "$tmp/runtime2"
# This user chose Polish on the settings page before.
printf '[Application]\nLanguage=pl\n' >"$user2/config/BRANTEL/KESTRAVIN.conf"
prepare_instance_lock "$tmp/runtime2" "$tmp" && HOME=$user2 XDG_CONFIG_HOME=$user2/config XDG_DATA_HOME=$user2/data XDG_CACHE_HOME=$user2/cache \
  XDG_RUNTIME_DIR=$tmp/runtime2 "$probe" launch --title "$title" --timeout-ms 30000 -- "$bin/kestravin" \
  >"$work/user2.out" 2>"$work/user2.err" &
poll 30000 grep -qE '^(mapped_ms|timeout|exit) ' "$work/user2.out" && user2_pid=$(awk '$1 == "pid" {print $2}' "$work/user2.out")
if grep -q '^mapped_ms ' "$work/user2.out" && alive "$user2_pid" && alive "$winner"; then
  ok "a second user's start got a window of its own (pid $user2_pid) beside the first user's"
else
  fail "a second user's start: $(grep -aoE 'Other instance detected|^(timeout|exit .*)$' "$work/user2.out" | xargs)"
fi
user2_log=$user2/data/BRANTEL/KESTRAVIN/Velmora.log
if grep -q 'Loading translation: .*/translations/KESTRAVIN_pl\.qm' "$user2_log" \
  && ! grep -q 'Unable to load translations' "$user2_log"; then
  ok "the second user's program speaks Polish, the language in that user's settings"
else
  fail "the second user's program did not load its Polish translation: $(grep -m2 -i 'translation' "$user2_log" | xargs)"
fi
# The tray's slots wrap: an icon docked later covers an earlier one, so the later goes first.
for pid in "$user2_pid" "$winner"; do
  poll 10000 icon_of "$pid" >/dev/null
  quit_through_tray "$(icon_of "$pid")" "$pid" || { fail "Quit did not end pid $pid"; kill -KILL "$pid" 2>/dev/null; }
done
wait "$winner" && ok "the running one ended with 0 through Quit" || fail "the running one did not end with 0"

# The service is the machine's, not the program's: it outlives the program and is stopped here.
left=$(our_processes Kestravin_Service)
if [ -n "$left" ]; then
  note "the service keeps running after the program ends (pid $left); stopped with SIGTERM"
  kill -TERM $left 2>/dev/null
  poll 10000 no_service || fail "the service did not end on SIGTERM"
fi
poll 10000 none_left \
  && ok "no program or service process of this test remains" \
  || fail "processes remain: $(our_processes kestravin) $(our_processes Kestravin_Service)"
left=$(for key in $lock_keys; do ipc_key_in_use "$key" && echo "$key"; done; ls "$tmp"/qipc_* "$tmp"/runtime*/* 2>/dev/null)
[ -z "$left" ] && ok "no lock object is left behind (System V keys $(echo $lock_keys), sockets)" \
  || fail "left behind: $(echo $left)"

echo "$failures failure(s); screenshot and logs in $work"
[ "$failures" -eq 0 ]
