#!/usr/bin/env bash
# Builds the project with its tests and benchmarks and runs every test.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
vrc_build build -DCMAKE_BUILD_TYPE=Release -DVRC_WITH_PANEL=ON -DVRC_BUILD_TESTS=ON -DVRC_BUILD_BENCH=ON
cd "$repo_root/build"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$jobs"
