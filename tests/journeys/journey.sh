# Sourced by the journeys with ORVELLES ORVELLES-CLI STACK: an X server of their own, a copy of the stack in a
# folder of their own, and real keys. Exit status 77 tells that a journey was left out.
set -euo pipefail
orvelles=$1
cli=$2
folder=$(mktemp -d)
stack=$folder/copy.Orvelle
server=
program=
manager=

leave_out() {
  echo "left out: $*"
  exit 77
}

fail() {
  echo "FAILED: $*" >&2
  cat "$folder"/*.log >&2
  exit 1
}

finish() {
  [ -z "$program" ] || kill "$program" 2>/dev/null || true
  [ -z "$manager" ] || kill "$manager" 2>/dev/null || true
  [ -z "$server" ] || kill "$server" 2>/dev/null || true
  wait
  rm -rf "$folder"
}
trap finish EXIT

# until_true SECONDS WHAT COMMAND...: waits for COMMAND to succeed.
until_true() {
  local end=$((SECONDS + $1)) what=$2
  shift 2
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] || fail "$what"
    sleep 0.1
  done
}

start_server() {
  local tool
  for tool in Xvfb xdotool; do
    command -v "$tool" >/dev/null || leave_out "there is no $tool"
  done
  mkdir "$folder/screen"
  Xvfb -noreset -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -fbdir "$folder/screen" \
    3>"$folder/display" 2>"$folder/server.log" &
  server=$!
  until_true 20 "Xvfb does not start" test -s "$folder/display"
  export DISPLAY=:$(cat "$folder/display")
  unset WAYLAND_DISPLAY
  export QT_QPA_PLATFORM=xcb HOME=$folder XDG_CONFIG_HOME=$folder/config XDG_RUNTIME_DIR=$folder LC_ALL=C.UTF-8
}

# take_focus NAME: a window of that name is there and has the focus. There is no window manager to give it.
take_focus() {
  local window
  window=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | tail -n 1) && [ -n "$window" ] || return 1
  xdotool windowfocus "$window" 2>/dev/null && [ "$(xdotool getwindowfocus 2>/dev/null)" = "$window" ]
}

open_program() {
  "$orvelles" "$stack" 2>"$folder/program.log" &
  program=$!
  until_true 30 "the main window does not open" take_focus 'copy\.Orvelle - Orvelles'
}

press() { xdotool key --delay 30 "$@"; }
type_text() { xdotool type --delay 30 "$1"; }

# go_to CARD: leafs from the first card to that one.
go_to() {
  local place
  place=$("$cli" cards "$stack" | cut -f 1 | grep -nxF "$1" | head -n 1 | cut -d : -f 1)
  [ -n "$place" ] || fail "there is no card $1"
  for ((; place > 1; --place)); do press ctrl+Next; done
}

# The program ends by itself, with status 0.
expect_end() {
  until_true 20 "the program goes on" eval "! kill -0 $program 2>/dev/null"
  wait "$program" || fail "the program ended with status $?"
  program=
}

found() { "$cli" search "$stack" "$1" | grep -qxF "$2"; }

cp "$3" "$stack"
chmod u+w "$stack"
start_server
