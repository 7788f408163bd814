#!/usr/bin/env bash
# Sets up, builds and runs Tumblekin on the shipped data in a window.
# With no display it runs the game for a few seconds on a virtual display,
# saves a screenshot and prints its path.
set -eu
cd "$(dirname "$0")/.."
tools/build.sh
cd build/game
if [ -n "${DISPLAY:-}" ] && xdotool getdisplaygeometry >/dev/null 2>&1; then
  if [ ! -f Tumblekin.ini ]; then
    # A first run in a window; the settings file keeps whatever you change later.
    printf '[video]\nwidth = 1024\nheight = 768\nbpp = 32\nwindow = 1\n' > Tumblekin.ini
  fi
  exec ./tumblekin "$@"
fi
exec python3 ../../tools/play_headless.py
