#!/usr/bin/env bash
# Installs the library into temporary prefixes and builds programs against the
# installed files only: the CMake package with and without the host stand-in,
# and a one-line compile through pkg-config.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
scripts/install-deps.sh man-db
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
cmake --build "$build" -j"$jobs" --target FixedPoint kvhost fixpt fixpt_manual

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
# The installed fixpt runs from the prefix alone: the core and the host
# stand-in are linked into it, so it needs no RUNPATH and no library of this
# project, only Qt. Its manual page lists every option --help lists.
echo "== installed fixpt and its manual page"
fixpt=$work/full/bin/fixpt
manual=$work/full/share/man/man1/fixpt.1
[ -x "$fixpt" ] || fail "bin/fixpt not installed"
[ -f "$manual" ] || fail "share/man/man1/fixpt.1 not installed"
readelf -d "$fixpt" | grep -qE 'RPATH|RUNPATH' && fail "the installed fixpt carries an RPATH"
readelf -d "$fixpt" | grep -qE 'NEEDED.*(FixedPoint|kvhost)' && fail "the installed fixpt needs a library of the build"
ldd "$fixpt" | grep -q 'not found' && fail "the installed fixpt misses a library"
[ "$(env -u LD_LIBRARY_PATH "$fixpt" --raw 0x1B33 s4.12 | sed -n 's/^exact: *//p')" = 1.699951171875 ] \
    || fail "the installed fixpt does not decode 0x1B33 in s4.12"
page=$(MANWIDTH=400 man --nh --nj -l "$manual" 2>/dev/null)
for option in $("$fixpt" --help | grep -oE '^ +(-[a-z], )?--[a-z0-9-]+' | grep -oE -- '--[a-z0-9-]+'); do
    printf '%s\n' "$page" | grep -q -- "$option" || fail "the manual page does not show $option"
done
echo "fixpt: installed, runs from the prefix, manual page complete"
echo "== install checks passed"
