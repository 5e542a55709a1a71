#!/usr/bin/env bash
# Builds Olmo and runs every test: the whole suite under AddressSanitizer
# and UndefinedBehaviorSanitizer, then the thread tests under
# ThreadSanitizer, then an optimised build (the demo's), whose warnings
# differ.  Installs what it needs first.  Prints how long each stage took
# and, last, one line with the totals.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
jobs=$(nproc)
log=$(mktemp -d)
trap 'rm -rf "$log"' EXIT

declare -a timings=()
passed=0
failed=0

stage() {   # stage <name> <command...>: runs and times one stage
    local name=$1 start end
    shift
    start=$(date +%s)
    echo "=== $name"
    "$@"
    end=$(date +%s)
    timings+=("$(printf '%-28s %5ss' "$name" $((end - start)))")
}

configure() {   # configure <dir> <sanitizer>
    cmake -S "$root" -B "$1" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_C_FLAGS_DEBUG="-g -O1" -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" \
        -DOLMO_SANITIZE="$2" >/dev/null
}

run_ctest() {   # run_ctest <dir> <ctest args...>: counts results, keeps going
    local dir=$1 out status=0
    shift
    out="$log/$(basename "$dir").txt"
    ctest --test-dir "$dir" -j"$jobs" --output-on-failure "$@" 2>&1 | tee "$out" || status=$?
    local line total bad
    line=$(grep -E 'tests passed, [0-9]+ tests? failed out of [0-9]+' "$out" | tail -n 1 || true)
    if [ -n "$line" ]; then
        bad=$(sed -E 's/.* ([0-9]+) tests? failed out of ([0-9]+).*/\1/' <<<"$line")
        total=$(sed -E 's/.* failed out of ([0-9]+).*/\1/' <<<"$line")
        passed=$((passed + total - bad))
        failed=$((failed + bad))
    elif [ "$status" -ne 0 ]; then
        failed=$((failed + 1))
    fi
}

stage "dependencies" bash scripts/install-deps.sh
export CCACHE_DIR=${CCACHE_DIR:-$HOME/.cache/ccache}

stage "build (asan+ubsan)" bash -c "$(declare -f configure); root=$root; configure build/asan address && cmake --build build/asan -j$jobs"
stage "tests (asan+ubsan)" run_ctest build/asan -LE thread

stage "build (tsan)" bash -c "$(declare -f configure); root=$root; configure build/tsan thread && cmake --build build/tsan -j$jobs"
stage "thread tests (tsan)" run_ctest build/tsan -L thread

stage "build (release)" bash -c "cmake -S '$root' -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DOLMO_BUILD_TESTS=ON -DOLMO_BUILD_BENCH=ON >/dev/null && cmake --build build/release -j$jobs"

echo
echo "=== stage times"
printf '%s\n' "${timings[@]}"
echo
echo "ctest: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
