#!/bin/sh
# Holds the table of CONTRIBUTING.md: a folder includes its own files and those of folders on the lines named for it, nothing else.
# usage: layers.sh SOURCE_FOLDER
set -eu
cd "$1"

# folder: what it may include besides itself
cat > "${TMPDIR:-/tmp}/layers.$$" <<'TABLE'
include/zbr:
core: include/zbr
mesh: include/zbr core
alloc: include/zbr core
loops: include/zbr core
segments: include/zbr core loops
arrangement: include/zbr core loops
boolean: include/zbr core loops segments arrangement
hiddenline: include/zbr core loops segments boolean
outline: include/zbr core loops segments arrangement boolean hiddenline
include/zbr-drawing: include/zbr
drawing: include/zbr include/zbr-drawing
include/zbr-formats: include/zbr include/zbr-drawing
formats: include/zbr include/zbr-drawing include/zbr-formats
app: include/zbr include/zbr-drawing include/zbr-formats
python: include/zbr include/zbr-drawing include/zbr-formats
web: include/zbr include/zbr-drawing include/zbr-formats
TABLE
trap 'rm -f "${TMPDIR:-/tmp}/layers.$$"' EXIT

awk -v table="${TMPDIR:-/tmp}/layers.$$" '
  BEGIN {
    while ((getline line < table) > 0) {
      n = split(line, word, /[: ]+/)
      known[word[1]] = 1
      allowed[word[1], word[1]] = 1
      for (i = 2; i <= n; ++i) if (word[i] != "") allowed[word[1], word[i]] = 1
    }
  }
  function folder(path,  f) {
    for (f in known) if (index(path, f "/") == 1) return f
    return ""
  }
  /^#include [<"]/ {
    path = $2
    gsub(/[<>"]/, "", path)
    if (path ~ /^zbr/) path = "include/" path
    from = folder(FILENAME)
    to = folder(path)
    ++seen[from]
    if (to == "" && $2 ~ /^"/) { print FILENAME ":" FNR ": includes " path ", which is in no folder of the table"; bad = 1 }
    if (to != "" && !((from, to) in allowed)) { print FILENAME ":" FNR ": " from " may not include " path; bad = 1 }
  }
  END {
    for (f in known) if (f != "include/zbr" && !seen[f]) { print f ": no file seen"; bad = 1 }
    exit bad
  }' $(sed 's/:.*//' "${TMPDIR:-/tmp}/layers.$$" | while read -r f; do find "$f" -name '*.h' -o -name '*.cpp'; done)
