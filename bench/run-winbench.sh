#!/usr/bin/env bash
# Installs a build into a scratch prefix, builds the portable Win32
# benchmark against that installed package, and runs it on $DISPLAY or, when
# there is none, on a private Xvfb.  Usage:
#   run-winbench.sh <build-dir> <winbench.c> [metric prefixes...]
set -euo pipefail
build=$1 source=$2
shift 2
work="$build/winbench-run"
rm -rf "$work"
cmake --install "$build" --prefix "$work/prefix" >/dev/null
cmake -S "$(dirname "$0")/winbench" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_PREFIX_PATH="$work/prefix" -DWINBENCH_SOURCE="$source" >/dev/null
cmake --build "$work/build" >/dev/null
if [ -z "${DISPLAY:-}" ]; then
    fifo=$(mktemp -u)
    mkfifo "$fifo"
    Xvfb -displayfd 4 -screen 0 1024x768x24 -nolisten tcp 4>"$fifo" 2>/dev/null &
    xvfb=$!
    read -r number <"$fifo"
    rm -f "$fifo"
    trap 'kill $xvfb 2>/dev/null || true' EXIT
    export DISPLAY=":$number"
fi
# Status 1 only says that some metric answered n/a (its functions are not
# carried out yet); 2 and above are failures.
status=0
OLMO_DIAGNOSTICS=quiet "$work/build/winbench" "$@" || status=$?
[ "$status" -le 1 ]
