#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds a C++ program against the panel's public
# header through the CMake package.
set -euo pipefail
build_dir=$1
consumer_dir=$2
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build_dir" --prefix "$prefix" >/dev/null
cmake -S "$consumer_dir" -B "$prefix/consumer-build" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$prefix/consumer-build" >/dev/null
LD_LIBRARY_PATH="$prefix/lib" "$prefix/consumer-build/panel_consumer"
