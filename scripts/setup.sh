#!/usr/bin/env bash
# Installs, with apt-get, everything the build, the tests, the benchmarks and the fuzz targets need.
# Safe to run again: it returns at once when everything is installed.
set -euo pipefail

packages=(
  build-essential g++ cmake ninja-build pkg-config git
  clang libclang-rt-14-dev
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  qt6-base-dev libgl-dev
  python3 python3-pil libtiff-tools libjpeg-turbo-progs libturbojpeg0-dev ghostscript libyuv-dev
)

# One dpkg query for all packages, so that a machine with everything installed is done at once.
installed=$(dpkg-query -W -f='${db:Status-Abbrev}${Package}\n' "${packages[@]}" 2>/dev/null |
            awk '$1 == "ii" {print $2}' || true)
missing=()
for p in "${packages[@]}"; do
  grep -qx -- "$p" <<<"$installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo_cmd=()
[ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
