#!/usr/bin/env bash
# Installs the build and test dependencies from Debian 12's archive, only
# those that are missing. Needs root (or sudo) when something is missing.
# Extra package names may be passed as arguments.
set -euo pipefail

# The Python package fixpt: pybind11 and Debian's interpreter with its headers
# and NumPy; its tests run under pytest with Hypothesis.
python_packages=(pybind11-dev python3-dev python3-numpy python3-pytest python3-hypothesis)
packages=(cmake make g++ pkg-config qtbase5-dev libgtest-dev libgmp-dev libbenchmark-dev help2man
          "${python_packages[@]}" "$@")

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' \
        || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo_cmd=()
[ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
# An index that fails to download (a mirror mid-sync, say for the armhf
# architecture the cross check adds) must not stop the install: apt keeps the
# indexes it has, and the install below fails loudly if a package is missing.
"${sudo_cmd[@]}" apt-get update -qq || echo "install-deps: apt-get update reported errors; installing from the indexes at hand" >&2
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
