#!/usr/bin/env bash
# Builds Olmo and runs the demo program.  Installs what it needs first.
# With a display ($DISPLAY) the demo's window stays until you close it;
# without one, the demo runs for a few seconds on a private Xvfb with mwm
# and its screen is saved as build/release/demo.png.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DOLMO_BUILD_TESTS=ON -DOLMO_BUILD_BENCH=ON >/dev/null
cmake --build build/release -j"$(nproc)" --target olmo_hello olmo-screenshot
demo=build/release/demos/olmo_hello

if [ -n "${DISPLAY:-}" ]; then
    exec "$demo" "$@"
fi

fifo=$(mktemp -u)
mkfifo "$fifo"
Xvfb -displayfd 4 -screen 0 1024x768x24 -nolisten tcp 4>"$fifo" 2>/dev/null &
xvfb=$!
read -r number <"$fifo"
rm -f "$fifo"
export DISPLAY=":$number"
HOME=/nonexistent mwm 2>/dev/null &
wm=$!
# mwm answers SIGTERM with a confirmation dialog of its own: it is killed.
trap 'kill -9 $wm 2>/dev/null; kill $xvfb 2>/dev/null || true' EXIT
"$demo" "${@:-4}" &
app=$!
build/release/tests/harness/olmo-screenshot build/release/demo.png "Olmo demo" 15 || true
wait $app
