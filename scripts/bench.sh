#!/usr/bin/env bash
# Builds the benchmark suite in Release, runs it once and prints the floors and
# one table: this library beside SystemC's sc_fix and a plain int32 quantiser.
#   scripts/bench.sh [extra Google Benchmark flags]
# Every case runs BENCH_REPETITIONS times (default 5), the repetitions of all
# cases interleaved in random order, and the table keeps each case's fastest
# repetition: on a shared or virtual machine a burst of load then slows one
# repetition of a case, not the case against its SystemC twin. BENCH_MIN_TIME
# (seconds per repetition, default 0.1) trades time for stability; the raw
# results stay in build-bench/bench.json.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh libbenchmark-dev libsystemc-dev
jobs=$(( $(nproc) < 2 ? $(nproc) : 2 ))

cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DFIXEDPOINT_BUILD_BENCHMARKS=ON \
    -DFIXEDPOINT_BUILD_TESTS=OFF >/dev/null
cmake --build build-bench -j"$jobs" --target fixedpoint_bench >/dev/null

build-bench/bench/fixedpoint_bench --benchmark_min_time="${BENCH_MIN_TIME:-0.1}" \
    --benchmark_repetitions="${BENCH_REPETITIONS:-5}" --benchmark_enable_random_interleaving=true \
    --benchmark_out=build-bench/bench.json --benchmark_out_format=json "$@" >build-bench/bench.log 2>&1

python3 scripts/bench_table.py build-bench/bench.json
