#!/usr/bin/env bash
# Installs the build into a scratch prefix, then builds and runs a C and a
# C++ program against it twice: through pkg-config and through
# find_package(Olmo).  Usage: install_test.sh <build-dir> <cc> <c++> [flags]
set -euo pipefail
build=$1 cc=$2 cxx=$3 flags=${4:-}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/prefix" >/dev/null
export PKG_CONFIG_PATH="$work/prefix/lib/pkgconfig"

expect42() {
    local status=0
    "$@" one "two three" || status=$?
    if [ "$status" -ne 42 ]; then
        echo "FAIL: $1 exited with $status" >&2
        exit 1
    fi
    echo "ok: $(basename "$1")"
}

# shellcheck disable=SC2046
"$cc" -std=c11 -pedantic -Wall -Wextra -Werror $flags "$here/consumer/app.c" \
    $(pkg-config --cflags --libs olmo) -o "$work/pc_app_c"
# shellcheck disable=SC2046
"$cxx" -std=c++20 -Wall -Wextra -Werror $flags "$here/consumer/app.cpp" \
    $(pkg-config --cflags --libs olmo) -o "$work/pc_app_cpp"
expect42 "$work/pc_app_c"
expect42 "$work/pc_app_cpp"

cmake -S "$here/consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
cmake --build "$work/cmake" >/dev/null
expect42 "$work/cmake/app_c"
expect42 "$work/cmake/app_cpp"
