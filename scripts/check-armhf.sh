#!/usr/bin/env bash
# Cross-builds the library, the tools and the whole test suite for 32-bit ARM
# (arm-linux-gnueabihf) and runs the tests under qemu-arm through ctest.
#
# Qt 5 Core, GoogleTest and GMP for armhf are not installed as packages (a
# multiarch install is often refused for version skew); their .debs are
# downloaded and unpacked into .deps/armhf/sysroot instead, once.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
scripts/install-deps.sh g++-arm-linux-gnueabihf qemu-user

deps=$root/.deps/armhf
sysroot=$deps/sysroot
build=$root/build-armhf
jobs=$(nproc)
[ "$jobs" -gt 2 ] && jobs=2

# Qt 5 Core with its runtime libraries (libc and libstdc++ come with the
# cross compiler), the Qt development files, GoogleTest and GMP.
packages=(
    libqt5core5a qtbase5-dev libdouble-conversion3 libglib2.0-0 libicu72
    libpcre2-16-0 libpcre2-8-0 libzstd1 zlib1g libffi8 libmount1 libblkid1
    libselinux1 qt5-qmake libgtest-dev libgmp-dev libgmp10 libgmpxx4ldbl
)

# One armhf index may fail to download; the packages needed here are listed
# in the others, so a partial update is good enough.
refresh_indexes() {
    "${sudo_cmd[@]}" apt-get update -qq || true
}

download_debs() {
    (cd "$deps/debs" && apt-get download -qq "${packages[@]/%/:armhf}")
}

prepare_sysroot() {
    # The marker records the package list, so that a changed list refills.
    local marker="$sysroot/.packages"
    [ -f "$marker" ] && [ "$(cat "$marker")" = "${packages[*]}" ] && return 0
    echo "== armhf: preparing $sysroot"
    sudo_cmd=()
    [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
    if ! dpkg --print-foreign-architectures | grep -qx armhf; then
        "${sudo_cmd[@]}" dpkg --add-architecture armhf
        refresh_indexes
    fi
    rm -rf "$deps/debs"
    mkdir -p "$deps/debs"
    # Stale indexes name files the mirror no longer has: refresh once, retry.
    download_debs || { refresh_indexes; download_debs; }
    rm -rf "$sysroot"
    mkdir -p "$sysroot"
    for deb in "$deps"/debs/*.deb; do
        dpkg -x "$deb" "$sysroot"
    done
    echo "${packages[*]}" >"$marker"
}

# Qt's CMake files expect moc, rcc and qmake beside the armhf libraries; the
# host's build tools (same Qt version) do the job.
link_host_qt_tools() {
    local host_bin target_bin tool
    host_bin=/usr/lib/$(g++ -print-multiarch)/qt5/bin
    for target_bin in "$sysroot/usr/lib/qt5/bin" "$sysroot/usr/lib/arm-linux-gnueabihf/qt5/bin"; do
        mkdir -p "$target_bin"
        for tool in "$host_bin"/*; do
            ln -sfn "$tool" "$target_bin/$(basename "$tool")"
        done
    done
}

prepare_sysroot
link_host_qt_tools
echo "== $build: configure and build"
FIXEDPOINT_ARMHF_SYSROOT=$sysroot cmake -S . -B "$build" \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchains/arm-linux-gnueabihf.cmake" \
    -DFIXEDPOINT_ARMHF_SYSROOT="$sysroot" \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DFIXEDPOINT_WERROR=ON >/dev/null
cmake --build "$build" -j"$jobs"
arm-linux-gnueabihf-readelf -h "$build/tests/fixedpoint_tests" | grep -q 'Machine: *ARM$' \
    || { echo "fixedpoint_tests is not an ARM binary" >&2; exit 1; }
echo "== $build: tests under qemu-arm"
ctest --test-dir "$build" --output-on-failure -j"$jobs"
