#!/usr/bin/env bash
# Builds the project and runs its main job.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
vrc_build build -DCMAKE_BUILD_TYPE=Release -DVRC_WITH_PANEL=ON
exec "$repo_root/build/tools/zep/zep" demo "$@"
