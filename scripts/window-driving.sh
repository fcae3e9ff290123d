# Sourced by the scripts that drive the program's window on a virtual screen as a user would
# (wizard-demo.sh, boot-check.sh): placing the window, clicks, screenshots. Needs DISPLAY, $probe
# (x11probe), $shots_dir, and poll from tests/realstart/helpers.sh.

# The visible window whose title starts with $1, as $window, placed at the top left corner and
# sized $2 x $3, which makes the coordinates below relative to the window.
fit_window() {
  window=
  poll 30000 find_window "$1" || return 1
  xdotool windowmove "$window" 0 0 windowsize "$window" "$2" "$3"
  W=$2
  H=$3
}
find_window() { window=$(xdotool search --onlyvisible --name "^$1" 2>/dev/null | head -n1); [ -n "$window" ]; }

# Saves the screen as $shots_dir/NN-$1.png after $2 seconds (0.6) for the page to settle.
shots=0
shot() {
  local name
  shots=$((shots + 1))
  name=$(printf %02d "$shots")-$1.png
  sleep "${2:-0.6}"
  "$probe" grab "$shots_dir/$name" >/dev/null 2>&1
  echo "shot $name"
}

click() { xdotool mousemove "$1" "$2" click 1; sleep "${3:-0.4}"; }
# The wizard's NEXT, START, APPLY, CANCEL and HOME share a place.
lead_on() { click $((W - 93)) $((H - 91)) "${1:-0.8}"; }

# From the home page: the drive section, then DATA MIGRATION, then the next drive of each list as
# source and destination (the system drive and the empty one of the machines these scripts make).
choose_migration_drives() {
  click $((W / 2)) $((393 + (H - 768) * 2 / 5)); xdotool key Down Return; sleep 1.5
  click $((W / 2)) 87 1.2
  shot choose-drives
  click $((W * 26 / 100)) 250 0.5; xdotool key Down Return; sleep 0.6
  click $((W * 74 / 100)) 250 0.5; xdotool key Down Return; sleep 0.8
  shot drives-chosen 0.3
}
