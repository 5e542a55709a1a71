#!/usr/bin/env bash
# Builds Olmo and runs the demo program.  Installs what it needs first.
# Arguments are passed to the demo's command line.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DOLMO_BUILD_TESTS=OFF -DOLMO_BUILD_BENCH=ON >/dev/null
cmake --build build/release -j"$(nproc)" --target olmo_hello
exec build/release/demos/olmo_hello "$@"
