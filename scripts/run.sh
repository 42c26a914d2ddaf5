#!/usr/bin/env bash
# Builds the project and runs its main job: the control panel on the simulated board, then the
# imaging demonstration. With a display the panel opens for the user; without one it runs a
# short demonstration script offscreen and saves a screenshot of itself.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
VRC_TARGETS="zep vrc-panel" vrc_build release
panel="$repo_root/build/tools/vrc-panel/vrc-panel"
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  "$panel"
else
  screenshot="$repo_root/vrc-panel-demo.png"
  script="$repo_root/tools/vrc-panel/demo.vrc"
  echo "vrc-panel (offscreen, no display): open the simulated board, Live for a second, Freeze"
  # Each command of the script beside the panel's answer to it.
  QT_QPA_PLATFORM=offscreen "$panel" --script "$script" --screenshot-on-exit "$screenshot" |
    paste -d '|' <(grep -v -e '^[[:space:]]*#' -e '^[[:space:]]*$' "$script") - | sed 's/|/   ->  /'
  echo "vrc-panel: screenshot of the panel saved as $screenshot"
fi
exec "$repo_root/build/tools/zep/zep" demo "$@"
