# Sourced by journeys that look at the screen and need a window manager. The X server keeps its screen in a file,
# in the format of xwd: a head of numbers, a table of colours, and the pixels, four bytes each.

screen_file() { echo "$folder/screen/Xvfb_screen0"; }

# number_at OFFSET: a number of the head of the screen's file.
number_at() { od -An -tu4 --endian=big -j "$1" -N 4 "$(screen_file)" | tr -d ' '; }

# pixels X Y WIDTH HEIGHT: the colours of a part of the screen, one a line, as bbggrr.
pixels() {
  local head line y
  head=$(($(number_at 0) + 12 * $(number_at 76)))
  line=$(number_at 48)
  for ((y = $2; y < $2 + $4; ++y)); do
    od -An -v -tx1 -w4 -j $((head + y * line + $1 * 4)) -N $(($3 * 4)) "$(screen_file)"
  done | awk '{print $1 $2 $3}'
}

pixel() { pixels "$1" "$2" 1 1; }

# share COLOUR X Y WIDTH HEIGHT: how many percent of a part of the screen have a colour.
share() { pixels "$2" "$3" "$4" "$5" | awk -v colour="$1" '$1 == colour {++n} END {print int(100 * n / NR)}'; }

# brightness X Y WIDTH HEIGHT: the mean of all channels of a part of the screen, 0 to 255.
brightness() {
  pixels "$@" | awk 'function hex(s) {return 16 * (index("0123456789abcdef", substr(s, 1, 1)) - 1) + \
      index("0123456789abcdef", substr(s, 2, 1)) - 1}
    {sum += hex(substr($1, 1, 2)) + hex(substr($1, 3, 2)) + hex(substr($1, 5, 2))} END {print int(sum / NR / 3)}'
}

start_window_manager() {
  command -v openbox >/dev/null || leave_out "there is no openbox"
  openbox --sm-disable >"$folder/manager.log" 2>&1 &
  manager=$!
  until_true 20 "the window manager does not start" xdotool get_desktop >/dev/null 2>&1
}

# drag X Y TO_X TO_Y...: presses the left button at a place, moves without rest over the others, and lets go.
drag() {
  xdotool mousemove "$1" "$2"
  sleep 0.3
  xdotool mousedown 1
  shift 2
  while [ $# -gt 0 ]; do
    xdotool mousemove "$1" "$2"
    shift 2
  done
  sleep 0.2
  xdotool mouseup 1
}

# geometry NAME: sets X, Y, WIDTH and HEIGHT to the place of a window's inside on the screen. Asked for a window
# in a frame, xdotool counts the frame twice, but it moves the pointer to the right place.
geometry() {
  local id
  id=$(xdotool search --onlyvisible --name "$1" | tail -n 1)
  eval "$(xdotool getwindowgeometry --shell "$id" | grep -E '^(WIDTH|HEIGHT)=')"
  xdotool mousemove --window "$id" 0 0
  eval "$(xdotool getmouselocation --shell | grep -E '^(X|Y)=')"
}
