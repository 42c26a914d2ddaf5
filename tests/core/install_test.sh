#!/usr/bin/env bash
# Installs the build into a temporary prefix, builds a C program against it twice (through the
# CMake package and through pkg-config), and runs the installed zep, which must find its library
# through its RUNPATH alone. A third argument names another consumer program instead, built
# through the CMake package only.
set -euo pipefail
build_dir=$1
consumer_dir=$2
program=${3:-consumer}
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build_dir" --prefix "$prefix" >/dev/null
libdir=$(dirname "$(find "$prefix" -name 'libvrcw32.so' -print -quit)")

cmake -S "$consumer_dir" -B "$prefix/consumer-build" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$prefix/consumer-build" >/dev/null
LD_LIBRARY_PATH="$libdir" "$prefix/consumer-build/$program"
[ "$program" = consumer ] || exit 0

export PKG_CONFIG_PATH="$libdir/pkgconfig"
cc -std=c99 -Wall -Werror "$consumer_dir/consumer.c" $(pkg-config --cflags --libs vrcw32) -o "$prefix/consumer-pc"
LD_LIBRARY_PATH="$libdir" "$prefix/consumer-pc"

runpath=$(readelf -d "$prefix/bin/zep" | sed -n 's/.*(RUNPATH).*\[\(.*\)\]/\1/p')
case "$runpath" in
  '$ORIGIN/../'*) ;;
  *) echo "installed zep has RUNPATH '$runpath', not \$ORIGIN/../<libdir>"; exit 1 ;;
esac
env -u LD_LIBRARY_PATH "$prefix/bin/zep" demo "$prefix/demo" >/dev/null
[ -s "$prefix/demo/rgb24.bmp" ] || { echo "installed zep wrote no demo files"; exit 1; }
echo "install: consumers built, installed zep runs from $prefix/bin"
