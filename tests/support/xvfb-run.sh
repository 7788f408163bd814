#!/usr/bin/env bash
# Runs one command on a virtual X display of its own: starts Xvfb on a free
# display number, runs the command with DISPLAY set, and stops the server it
# started. Usage: xvfb-run.sh [--size WxH] COMMAND [ARGS...]
set -u
size=1024x768
if [ "${1:-}" = "--size" ]; then size=$2; shift 2; fi

fifo_dir=$(mktemp -d)
mkfifo "$fifo_dir/fd"
Xvfb -displayfd 3 -screen 0 "${size}x24" -nolisten tcp +extension GLX -noreset \
  3>"$fifo_dir/fd" >/dev/null 2>&1 &
xvfb_pid=$!
display=""
read -r -t 20 display <"$fifo_dir/fd" || true
rm -rf "$fifo_dir"
if [ -z "$display" ]; then
  echo "xvfb-run.sh: the virtual display did not start" >&2
  kill "$xvfb_pid" 2>/dev/null
  exit 1
fi
export DISPLAY=":$display"
# Tests run with a quiet sound system: no real card is needed or wanted.
export ALSA_CONFIG_PATH=${ALSA_CONFIG_PATH:-/dev/null}

"$@"
status=$?
kill "$xvfb_pid" 2>/dev/null
wait "$xvfb_pid" 2>/dev/null
exit $status
