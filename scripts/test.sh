#!/usr/bin/env bash
# Builds everything warning-free (-Werror) and runs the whole test suite, then
# runs it again under AddressSanitizer and UndefinedBehaviorSanitizer; then
# checks the installed package, builds the Doxygen reference (warnings are
# errors), checks the Qt 6 build and the 32-bit ARM build (under qemu-arm),
# runs the concurrency test under ThreadSanitizer, the suite under Valgrind
# memcheck (Release build) and every fuzz target for a short smoke run
# (FUZZ_SECONDS, default 20 s each; scripts/fuzz.sh runs them longer by hand),
# and checks the library's line and branch coverage (scripts/coverage.sh).
# Every ctest run includes the exhaustive tests (label `exhaustive`).
# Prints each stage's time at the end.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh clang libclang-rt-14-dev valgrind doxygen gcovr
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
# The sanitizer build includes the Python package: its tests run the module
# under ASan and UBSan (preloaded into the interpreter, see python/tests/).
stage sanitizers run_suite build-asan -DCMAKE_BUILD_TYPE=Debug -DFIXEDPOINT_SANITIZE=address,undefined
stage install scripts/check-install.sh
stage docs scripts/docs.sh
stage qt6 scripts/check-qt6.sh
stage armhf scripts/check-armhf.sh

tsan_stage() {
    echo "== build-tsan: concurrency test under ThreadSanitizer"
    cmake -S . -B build-tsan -DFIXEDPOINT_WERROR=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DFIXEDPOINT_SANITIZE=thread -DFIXEDPOINT_BUILD_TOOLS=OFF >/dev/null
    cmake --build build-tsan -j"$jobs" --target fixedpoint_concurrency_tests
    TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" \
        ctest --test-dir build-tsan --output-on-failure -R '^Concurrency$'
}

valgrind_stage() {
    echo "== build-valgrind: test suite under Valgrind memcheck"
    cmake -S . -B build-valgrind -DFIXEDPOINT_WERROR=ON -DCMAKE_BUILD_TYPE=Release \
        -DFIXEDPOINT_BUILD_TOOLS=OFF >/dev/null
    cmake --build build-valgrind -j"$jobs" --target fixedpoint_tests
    valgrind --quiet --error-exitcode=1 --leak-check=full --errors-for-leak-kinds=definite,indirect \
        build-valgrind/tests/fixedpoint_tests --gtest_brief=1
}

stage threads tsan_stage
stage valgrind valgrind_stage
stage fuzz scripts/fuzz.sh "${FUZZ_SECONDS:-20}"
stage coverage scripts/coverage.sh

echo "== stage times"
printf '%s\n' "${timings[@]}"

# Every stage above stops the script on a failure, so reaching this line means
# the whole suite passed.
total=$(ctest --test-dir build-test -N | sed -n 's/^Total Tests: //p')
echo "tests: ${total} passed, 0 failed"
