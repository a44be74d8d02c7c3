#!/bin/sh
# Compares the names that the shared library exports with the names that the public headers declare ZBR_API, overload by overload:
# both lists hold one line per overload, so a missing or an unexpected one shows in the difference.
# usage: exports.sh LIBRARY INCLUDE_DIR
set -eu
library=$1 include=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# Class bodies begin and end in the first column, as clang-format leaves them.
awk '
  function name(text) {
    sub(/.*ZBR_API /, "", text)
    if (text ~ /operator\(\)/) return "operator()"
    if (!sub(/ *\(.*/, "", text)) sub(/ *[;={].*/, "", text)
    sub(/.* /, "", text)
    sub(/^[&*]+/, "", text)
    return text
  }
  /^#/ { next }
  { sub(/\/\/.*/, "") }
  /^(class|struct) [A-Za-z0-9_]+ .*\{/ { scope = $2 "::" }
  /^\};/ { scope = "" }
  pending != "" || /(^| )ZBR_API / { pending = pending " " $0 }
  pending ~ /[;{]/ { print scope name(pending); pending = "" }
' "$include"/zbr/*.h | sort >"$scratch/declared"

# The two entry points that a compiler makes of one constructor or destructor demangle to the same line.
nm -DC --defined-only "$library" | sed 's/^[0-9a-f]* . //' | sort -u |
  sed -e '/operator()/!s/(.*//' -e 's/operator()(.*/operator()/' | sort >"$scratch/exported"

test -s "$scratch/declared" || { echo "no declarations found in $include"; exit 1; }
diff -u "$scratch/declared" "$scratch/exported" || { echo "declared (-) and exported (+) names differ"; exit 1; }
echo "$(wc -l <"$scratch/exported") names declared and exported"
