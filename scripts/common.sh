# Shared by the run and test scripts: set up the machine, then configure and build one preset of
# CMakePresets.json (release, debug, asan, tsan, fuzz).
# Usage: [VRC_TARGETS="t1 t2"] [VRC_WERROR=ON] vrc_build <preset> [cmake options...]
# VRC_TARGETS limits the build to those targets; by default everything is built. VRC_WERROR=ON
# (set by CI) turns warnings into errors.
set -euo pipefail
repo_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=${VRC_JOBS:-$(nproc)}

vrc_build() {
  local preset=$1; shift
  "$repo_root/scripts/setup.sh"
  local options=("$@")
  [ -n "${VRC_WERROR:-}" ] && options+=("-DVRC_WERROR=$VRC_WERROR")
  local targets=()
  for target in ${VRC_TARGETS:-}; do targets+=(--target "$target"); done
  (cd "$repo_root" && cmake --preset "$preset" "${options[@]}" &&
     cmake --build --preset "$preset" -j "$jobs" "${targets[@]}")
}
