#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds a C program against it twice: through
# the CMake package and through pkg-config. A third argument names another consumer program,
# built through the CMake package only.
set -euo pipefail
build_dir=$1
consumer_dir=$2
program=${3:-consumer}
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build_dir" --prefix "$prefix" >/dev/null

cmake -S "$consumer_dir" -B "$prefix/consumer-build" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$prefix/consumer-build" >/dev/null
LD_LIBRARY_PATH="$prefix/lib" "$prefix/consumer-build/$program"
[ "$program" = consumer ] || exit 0

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
cc -std=c99 -Wall -Werror "$consumer_dir/consumer.c" $(pkg-config --cflags --libs vrcw32) -o "$prefix/consumer-pc"
LD_LIBRARY_PATH="$prefix/lib" "$prefix/consumer-pc"
