#!/usr/bin/env bash
# Installs the build into a scratch prefix, then builds the resource test
# program (app/resapp.c with app/app.rc) twice and runs it: through
# pkg-config with the installed olmo-rc, as the README documents, and in a
# C-only CMake project through find_package(Olmo) and olmo_add_resources.
# Usage: installed_test.sh <build-dir> <cc> [flags]
set -euo pipefail
build=$1 cc=$2 flags=${3:-}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
if [ ! -x "$prefix/bin/olmo-rc" ]; then
    echo "FAIL: olmo-rc is not installed in $prefix/bin" >&2
    exit 1
fi
export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"

# pkg-config: compile the script to a C file, build it with the program.
CC=$cc "$prefix/bin/olmo-rc" -o "$work/app_res.c" "$here/app/app.rc"
# shellcheck disable=SC2046,SC2086
"$cc" -std=c11 -pedantic -Wall -Wextra -Werror $flags "$here/app/resapp.c" "$work/app_res.c" \
    $(pkg-config --cflags --libs olmo) -o "$work/pc_resapp"
"$work/pc_resapp" "$here/app/res/logo.bmp"

# CMake, C only.
cmake -S "$here/consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_C_COMPILER="$cc" -DCMAKE_C_FLAGS="$flags -Wall -Wextra -Werror" \
    -DOLMO_APP_DIR="$here/app" >/dev/null
cmake --build "$work/cmake" >/dev/null
"$work/cmake/resapp" "$here/app/res/logo.bmp"
