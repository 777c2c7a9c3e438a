#!/usr/bin/env bash
# Builds everything warning-free (-Werror) and runs the whole test suite, then
# runs it again under AddressSanitizer and UndefinedBehaviorSanitizer.
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

run_suite build-test -DCMAKE_BUILD_TYPE=RelWithDebInfo
run_suite build-asan -DCMAKE_BUILD_TYPE=Debug -DFIXEDPOINT_SANITIZE=address,undefined
