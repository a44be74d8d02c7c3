#!/bin/sh
# Builds the library alone and static, with the distribution's folder for libraries, as a packager would. Unoptimised: only the
# package is looked at.
# usage: static_library.sh SOURCE_DIR BUILD_DIR COMPILER
set -eu
cmake -S "$1" -B "$2" -DCMAKE_CXX_COMPILER="$3" -DCMAKE_BUILD_TYPE=Debug -DBUILD_SHARED_LIBS=OFF -DBUILD_TESTING=OFF \
  -DCMAKE_INSTALL_LIBDIR="lib/$("$3" -print-multiarch)"
cmake --build "$2" --parallel "$(nproc)"
test -f "$2/libzbr.a"
