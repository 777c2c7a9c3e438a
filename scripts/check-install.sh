#!/usr/bin/env bash
# Installs the library into temporary prefixes and builds programs against the
# installed files only: the CMake package with and without the host stand-in,
# and a one-line compile through pkg-config.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
scripts/install-deps.sh
build=$root/build-install
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
jobs=$(nproc)
[ "$jobs" -gt 2 ] && jobs=2

fail() { echo "check-install: $*" >&2; exit 1; }

echo "== $build: configure and build"
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DFIXEDPOINT_WERROR=ON \
    -DFIXEDPOINT_BUILD_TESTS=OFF -DFIXEDPOINT_INSTALL_HOST_STANDIN=ON \
    -DCMAKE_INSTALL_PREFIX="$work/full" -DCMAKE_INSTALL_LIBDIR=lib >/dev/null
cmake --build "$build" -j"$jobs" --target FixedPoint kvhost

# The Python package fixpt installs with everything else: its module too.
python=/usr/bin/python3
cmake --build "$build" -j"$jobs" --target fixpt_python_core

echo "== install: everything into $work/full, library only into $work/lib-only"
cmake --install "$build" >/dev/null
for component in Runtime Development; do
    cmake --install "$build" --prefix "$work/lib-only" --component "$component" >/dev/null
done

# The installed library: versioned file, SONAME, the host's report function
# left to the loader, and no Qt in what consumers inherit.
library=$work/full/lib/libFixedPoint.so
[ -L "$library" ] || fail "libFixedPoint.so namelink missing"
readelf -d "$library" | grep -q 'SONAME.*\[libFixedPoint\.so\.1\]' || fail "SONAME is not libFixedPoint.so.1"
[ -f "$work/full/lib/libFixedPoint.so.1.0.0" ] || fail "libFixedPoint.so.1.0.0 missing"
nm -D --undefined-only "$library" | grep -q '_KV_ProcessErrorString' \
    || fail "_KV_ProcessErrorString is not left to the host"
nm -D --defined-only "$library" | grep -q '_KV_ProcessErrorString' \
    && fail "libFixedPoint defines _KV_ProcessErrorString itself"
grep -q 'Qt' "$work/full/lib/cmake/FixedPoint/FixedPointTargets.cmake" \
    && fail "FixedPoint::FixedPoint passes Qt on to its consumers"
for header in FixedPoint.h FixedPoint_export.h; do
    [ -f "$work/full/include/$header" ] || fail "$header not installed"
    [ -f "$work/lib-only/include/$header" ] || fail "$header not installed by the Development component"
done
[ -e "$work/lib-only/lib/libkvhost.so" ] && fail "the stand-in leaked into the library components"

expected_output() {
    printf '%s\n' '1.7 = 1.699951171875 (raw 0x1B33)' '20.0 = 7.999755859375 (raw 0x7FFF)'
}

run_consumer() {
    local name=$1 prefix=$2 out
    echo "== consumer against $name"
    cmake -S examples/consumer -B "$work/consumer-$name" -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_BUILD_TYPE=Release >/dev/null
    cmake --build "$work/consumer-$name" -j"$jobs" >/dev/null
    out=$("$work/consumer-$name/consumer" 2>"$work/$name.err")
    echo "$out"
    cat "$work/$name.err"
    [ "$out" = "$(expected_output)" ] || fail "consumer ($name) printed unexpected values"
    grep -q 'Not enough predecimal bits (4)  for fixed point conversion of value 20. The value will be limited.' \
        "$work/$name.err" || fail "consumer ($name): the range warning did not reach the host"
}

run_consumer full "$work/full"
run_consumer lib-only "$work/lib-only"

echo "== pkg-config one-liner"
export PKG_CONFIG_PATH=$work/full/lib/pkgconfig
[ "$(pkg-config --modversion fixedpoint)" = "$(sed -n 's/^project(FixedPoint VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)" ] \
    || fail "fixedpoint.pc carries the wrong version"
g++ -std=c++17 -o "$work/pc-consumer" examples/consumer/main.cpp \
    $(pkg-config --cflags --libs fixedpoint) -L"$work/full/lib" -lkvhost
out=$(LD_LIBRARY_PATH=$work/full/lib "$work/pc-consumer" 2>/dev/null)
[ "$out" = "$(expected_output)" ] || fail "pkg-config build printed unexpected values"
echo "$out"
# The Python package from the installed prefix alone: Debian's layout, the
# compiled module with neither libFixedPoint.so nor the stand-in, only its init
# function exported, nothing of it in the library components.
echo "== Python package fixpt from $work/full"
site=$work/full/lib/python3/dist-packages
[ -f "$site/fixpt/__init__.py" ] || fail "fixpt is not installed under lib/python3/dist-packages"
module=$(ls "$site"/fixpt/_core*.so) || fail "fixpt's compiled module is not installed"
readelf -d "$module" | grep -qE 'NEEDED.*(libFixedPoint|libkvhost)' \
    && fail "fixpt's module needs libFixedPoint.so or the host stand-in"
[ "$(nm -D --defined-only "$module" | awk '{print $3}')" = PyInit__core ] \
    || fail "fixpt's module exports more than its init function"
[ -e "$work/lib-only/lib/python3" ] && fail "the Python package leaked into the library components"
out=$(cd "$work" && env -u LD_LIBRARY_PATH PYTHONPATH="$site" "$python" -c \
    'import fixpt; print(hex(fixpt.quantize(1.7, "s4.12")), fixpt.Fixed(1.7, "s4.12").to_string())')
echo "$out"
[ "$out" = "0x1b33 1.B33" ] || fail "fixpt from the installed prefix printed unexpected values"
echo "== install checks passed"
