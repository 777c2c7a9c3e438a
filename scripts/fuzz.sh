#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, AddressSanitizer + UBSan) and runs each
# for the given number of seconds (default 20), one after another on one
# core, starting from the checked-in seeds. New inputs go to a scratch corpus
# under the build directory, never into the repository. Prints the
# executions per target; any crash or divergence fails the script and leaves
# the reproducer (crash-*) in build-fuzz/artifacts/.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-20}
dir=build-fuzz
CXX=${FUZZ_CXX:-clang++} cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DFIXEDPOINT_BUILD_FUZZERS=ON -DFIXEDPOINT_BUILD_TESTS=OFF -DFIXEDPOINT_BUILD_TOOLS=OFF \
    -DFIXEDPOINT_WERROR=ON -DFIXEDPOINT_SANITIZE=address,undefined >/dev/null
cmake --build "$dir" -j"$(nproc)" >/dev/null

mkdir -p "$dir/artifacts"
status=0
printf '%-10s %12s %10s %8s\n' target executions exec/s corpus
for binary in "$dir"/fuzz/fuzz_*; do
    [ -x "$binary" ] || continue
    target=${binary##*/fuzz_}
    work="$dir/corpus/$target"
    mkdir -p "$work"
    log="$dir/fuzz_$target.log"
    if ! "$binary" -max_total_time="$seconds" -print_final_stats=1 -timeout=10 -rss_limit_mb=2048 \
        -artifact_prefix="$dir/artifacts/$target-" "$work" "fuzz/corpus/$target" >"$log" 2>&1; then
        echo "fuzz_$target FAILED; see $log:"
        grep -E 'divergence|ERROR|runtime error|SUMMARY' "$log" | head -5
        status=1
    fi
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")
    printf '%-10s %12s %10s %8s\n' "$target" "${executions:-?}" "${rate:-?}" "$(ls "$work" | wc -l)"
done
exit $status
