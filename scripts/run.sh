#!/usr/bin/env bash
# Builds the project and runs its main job.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
VRC_TARGETS=zep vrc_build release
exec "$repo_root/build/tools/zep/zep" demo "$@"
