#!/usr/bin/env bash
# Installs, with apt-get, everything the build, the tests, the benchmarks and the fuzz targets need.
# Safe to run again: apt-get skips what is already installed.
set -euo pipefail

packages=(
  build-essential g++ cmake ninja-build pkg-config git
  clang libclang-rt-14-dev
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  qt6-base-dev libgl-dev
  python3 python3-pil libtiff-tools libjpeg-turbo-progs libturbojpeg0-dev ghostscript libyuv-dev
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo_cmd=()
[ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
