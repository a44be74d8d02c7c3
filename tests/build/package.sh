#!/bin/sh
# Installs a build, moves the installed tree elsewhere, and builds and runs the consumer project against it: through
# find_package, and by hand with the flags that pkg-config gives.
# usage: package.sh BUILD_DIR SCRATCH_DIR COMPILER [PKG_CONFIG]
set -eu
build=$1 scratch=$2 compiler=$3 pkg_config=${4-}
consumer=$(cd "$(dirname "$0")/../consumer" && pwd)

rm -rf "$scratch"
cmake --install "$build" --prefix "$scratch/first" >/dev/null
mv "$scratch/first" "$scratch/prefix"
prefix=$scratch/prefix
test -f "$prefix/include/zbr/zbr.h"
if [ -e "$prefix/bin/zbr" ]; then "$prefix/bin/zbr" --version; fi

cmake -S "$consumer" -B "$scratch/consumer" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler" >"$scratch/log"
cmake --build "$scratch/consumer" >>"$scratch/log" || { cat "$scratch/log"; exit 1; }
"$scratch/consumer/consumer"
if [ -d "$prefix/include/zbr-drawing" ]; then "$scratch/consumer/consumer-drawing"; fi
grep -q "^zbr_DIR:PATH=$prefix/" "$scratch/consumer/CMakeCache.txt"  # not one that the machine happens to have

if [ -n "$pkg_config" ]; then
  PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name zbr.pc)")
  export PKG_CONFIG_PATH
  # shellcheck disable=SC2046  # flags are words
  "$compiler" -std=c++17 $("$pkg_config" --cflags zbr) "$consumer"/*.cpp -o "$scratch/by_hand" $("$pkg_config" --libs zbr) \
    -Wl,-rpath,"$("$pkg_config" --variable=libdir zbr)"
  "$scratch/by_hand"
fi
