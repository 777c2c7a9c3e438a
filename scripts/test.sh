#!/usr/bin/env bash
# Builds everything warning-free (-Werror) and runs the whole test suite, then
# runs it again under AddressSanitizer and UndefinedBehaviorSanitizer; then
# checks the installed package, the Qt 6 build and the 32-bit ARM build (under
# qemu-arm). Prints each stage's time at the end.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
jobs=$(nproc)

run_suite() {
    local dir=$1
    shift
    echo "== $dir: configure and build"
    cmake -S . -B "$dir" -DFIXEDPOINT_WERROR=ON "$@" >/dev/null
    cmake --build "$dir" -j"$jobs"
    echo "== $dir: tests"
    ctest --test-dir "$dir" --output-on-failure -j"$jobs"
}

timings=()
stage() {
    local name=$1 start=$SECONDS
    shift
    "$@"
    timings+=("$(printf '%-12s %4ds' "$name" $((SECONDS - start)))")
}

stage tests run_suite build-test -DCMAKE_BUILD_TYPE=RelWithDebInfo
stage sanitizers run_suite build-asan -DCMAKE_BUILD_TYPE=Debug -DFIXEDPOINT_SANITIZE=address,undefined
stage install scripts/check-install.sh
stage qt6 scripts/check-qt6.sh
stage armhf scripts/check-armhf.sh

echo "== stage times"
printf '%s\n' "${timings[@]}"
