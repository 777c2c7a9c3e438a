#!/usr/bin/env bash
# Installs the library into temporary prefixes and builds programs against the
# installed files only: the CMake package with and without the host stand-in,
# a one-line compile through pkg-config, and both again after the installed
# tree was moved elsewhere.
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
for header in FixedPoint.h FixedPoint_export.h KV_ProcessErrorString.h; do
    [ -f "$work/full/include/$header" ] || fail "$header not installed"
    [ -f "$work/lib-only/include/$header" ] || fail "$header not installed by the Development component"
done
[ -e "$work/lib-only/lib/libkvhost.so" ] && fail "the stand-in leaked into the library components"

# Reports name source files relative to the source tree: the build machine's
# directory must not be compiled into the library (this Release build has no
# debug information, which alone may keep it).
grep -q -F "$root/" "$work/full/lib/libFixedPoint.so.1.0.0" \
    && fail "libFixedPoint carries the build machine's source path $root"

expected_output() {
    printf '%s\n' '1.7 = 1.699951171875 (raw 0x1B33)' '20.0 = 7.999755859375 (raw 0x7FFF)' \
        '1.0 in 161 bits = 0'
}

# The reports on a consumer's stderr ("file:line: ..." from the stand-in and
# from the consumer's own function alike): the class's range warning and the
# core's width report, each naming its file relative to the source tree, as
# a file that exists there.
check_reports() {
    local name=$1 err=$2 file
    grep -q 'Not enough predecimal bits (4)  for fixed point conversion of value 20. The value will be limited.' \
        "$err" || fail "consumer ($name): the range warning did not reach the host"
    grep -q '^Common/FixedPointLibrary/FixedPoint\.cpp:[0-9]*: .*Not enough predecimal bits' "$err" \
        || fail "consumer ($name): the range warning does not name Common/FixedPointLibrary/FixedPoint.cpp"
    grep -q '^FixedPointLibrary/src/[a-z_]*\.cpp:[0-9]*: .*Too many bits used (double2fixed)' "$err" \
        || fail "consumer ($name): the width report does not name a file of FixedPointLibrary/src"
    while IFS= read -r file; do
        case $file in
            /*) fail "consumer ($name): a report names the absolute path $file" ;;
        esac
        [ -f "$root/$file" ] || fail "consumer ($name): a report names $file, not a file of the source tree"
    done < <(sed -n 's/^\([^:]*\):[0-9][0-9]*: .*/\1/p' "$err")
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
    check_reports "$name" "$work/$name.err"
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

# Relocation: the library-only tree is moved to another place, at another
# depth, and the old place is gone. fixedpoint.pc finds its files from its
# own location, so the one-line pkg-config build against the moved tree still
# works; so does the CMake package, whose files are relative already. The
# program defines the report function itself against the moved header.
echo "== relocated prefix: pkg-config and CMake consumers"
moved=$work/relocated/some/other/place
mkdir -p "$(dirname "$moved")"
mv "$work/lib-only" "$moved"
export PKG_CONFIG_PATH=$moved/lib/pkgconfig
grep -q -F "$work/" "$moved/lib/pkgconfig/fixedpoint.pc" \
    && fail "fixedpoint.pc names the prefix it was installed into"
pc_libdir=$(pkg-config --variable=libdir fixedpoint)
[ -d "$pc_libdir" ] && [ "$(cd "$pc_libdir" && pwd -P)" = "$(cd "$moved/lib" && pwd -P)" ] \
    || fail "the moved fixedpoint.pc gives libdir $pc_libdir, not $moved/lib"
qt_major=$(sed -n 's/^set(FixedPoint_QT_MAJOR \([0-9]*\))$/\1/p' "$moved/lib/cmake/FixedPoint/FixedPointConfig.cmake")
[ -n "$qt_major" ] || fail "FixedPointConfig.cmake does not say which Qt the library uses"
g++ -std=c++17 -fPIC -o "$work/pc-relocated" examples/consumer/main.cpp examples/consumer/report.cpp \
    $(pkg-config --cflags --libs fixedpoint "Qt${qt_major}Core")
out=$(LD_LIBRARY_PATH=$moved/lib "$work/pc-relocated" 2>"$work/pc-relocated.err")
echo "$out"
[ "$out" = "$(expected_output)" ] || fail "pkg-config build against the moved prefix printed unexpected values"
check_reports pc-relocated "$work/pc-relocated.err"
run_consumer relocated "$moved"

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
    grep -q -e "$option" <<<"$page" || fail "the manual page does not show $option"
done
echo "fixpt: installed, runs from the prefix, manual page complete"

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
[ -e "$moved/lib/python3" ] && fail "the Python package leaked into the library components"
out=$(cd "$work" && env -u LD_LIBRARY_PATH PYTHONPATH="$site" "$python" -c \
    'import fixpt; print(hex(fixpt.quantize(1.7, "s4.12")), fixpt.Fixed(1.7, "s4.12").to_string())')
echo "$out"
[ "$out" = "0x1b33 1.B33" ] || fail "fixpt from the installed prefix printed unexpected values"
echo "== install checks passed"
