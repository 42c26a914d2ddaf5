#!/usr/bin/env bash
# Builds the project with its tests and benchmarks (preset "release") and runs every test.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
vrc_build release
cd "$repo_root"
ctest --preset release -j "$jobs"
