#!/usr/bin/env bash
# Builds the library and the fixpt tool, then quantises 1.7 into a signed
# format with 4 integer and 12 fractional bits (and 20.0, which saturates and
# warns through the host's report function).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DFIXEDPOINT_BUILD_TESTS=OFF >/dev/null
cmake --build build -j"$(nproc)" --target fixpt >/dev/null
build/tools/fixpt 1.7 4 12 --warn
build/tools/fixpt 20 4 12 --warn
