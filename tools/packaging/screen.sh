# Sourced by the trials of this folder, after common.sh: a screen without a monitor, and somebody in front of it.
# shellcheck shell=bash disable=SC2154,SC2034  # screen is for the caller to end, out is common.sh's
screen=

# wait_for SECONDS COMMAND...: until it succeeds
wait_for() {
  local end=$((SECONDS + $1))
  shift
  until "$@" >/dev/null 2>&1; do
    [ "$SECONDS" -lt "$end" ] || fail "waited in vain: $*"
    sleep 0.2
  done
}

start_screen() { # as large as screen_size says
  rm -f "$out/display"
  Xvfb -displayfd 3 -ac -screen 0 "${screen_size:-1280x900}x24" 3>"$out/display" >/dev/null 2>&1 &
  screen=$!
  wait_for 20 test -s "$out/display"
  DISPLAY=:$(cat "$out/display")
  export DISPLAY
}

# window TITLE: its number, once it is there
window() {
  wait_for 120 xdotool search --onlyvisible --name "$1"
  xdotool search --onlyvisible --name "$1" | tail -1
}

press() { # WINDOW KEY...
  local into=$1 key
  shift
  for key in "$@"; do xdotool windowfocus "$into" key --delay 50 "$key"; done
}

# worked_with PICTURE: as a user, in the main window of a program that has just been started: on line, the operand view, a region read; the picture.
worked_with() {
  local main view
  main=$(window ' - Off line - Telepanel$') || fail "no main window: $(cat "$out/window.log")"
  sleep 2 # until it has been painted
  press "$main" F5
  wait_for 60 xdotool search --onlyvisible --name ' - Running - Telepanel$'
  press "$main" ctrl+d
  view=$(window '^Operand') || fail "no operand view"
  sleep 1
  press "$view" ctrl+r F5 # the cell of MB 0 becomes a region, which is read
  sleep 5
  import -window root "$1"
}
