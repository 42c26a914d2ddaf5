# Shared by the run and test scripts: set up the machine, then configure and build one tree.
# Usage: [VRC_TARGETS="t1 t2"] vrc_build <build-dir> [cmake options...]
# VRC_TARGETS limits the build to those targets; by default everything is built.
set -euo pipefail
repo_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=${VRC_JOBS:-$(nproc)}

vrc_build() {
  local dir=$1; shift
  "$repo_root/scripts/setup.sh"
  cmake -S "$repo_root" -B "$repo_root/$dir" -G Ninja "$@" >/dev/null
  local targets=()
  for target in ${VRC_TARGETS:-}; do targets+=(--target "$target"); done
  cmake --build "$repo_root/$dir" -j "$jobs" "${targets[@]}"
}
