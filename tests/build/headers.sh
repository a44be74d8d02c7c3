#!/bin/sh
# Compiles every public header on its own, included twice, with warnings as errors.
# usage: headers.sh COMPILER STANDARD INCLUDE_DIR
set -eu
compiler=$1 standard=$2 include=$3
count=0
for header in "$include"/*/*.h; do
  name=$(basename "$(dirname "$header")")/$(basename "$header")
  printf '#include <%s>\n#include <%s>\n' "$name" "$name" |
    "$compiler" -std="$standard" -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -I"$include" -fsyntax-only -x c++ -
  count=$((count + 1))
done
echo "$count headers compiled as $standard with $compiler"
