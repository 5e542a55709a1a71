#!/usr/bin/env bash
# Installs the Debian packages Olmo builds and tests with, when any is
# missing.  Runs apt-get as root, or through sudo otherwise.
set -euo pipefail

packages=(
    build-essential python3 cmake ninja-build ccache pkg-config
    libx11-dev libxt-dev libmotif-dev libxft-dev libxrender-dev libxext-dev
    libfontconfig1-dev libxtst-dev libpng-dev
    googletest libgtest-dev libbenchmark-dev
    xvfb xauth mwm fonts-dejavu-core
    binutils-mingw-w64-x86-64 llvm clang
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "installing: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
