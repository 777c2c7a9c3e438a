#!/usr/bin/env bash
# Builds everything against Qt 6 warning-free (-Werror) and runs the test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh qt6-base-dev
build=build-qt6
jobs=$(nproc)
[ "$jobs" -gt 2 ] && jobs=2

echo "== $build: configure and build"
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DFIXEDPOINT_QT_MAJOR=6 -DFIXEDPOINT_WERROR=ON >/dev/null
cmake --build "$build" -j"$jobs"
echo "== $build: tests"
ctest --test-dir "$build" --output-on-failure -j"$jobs"
