#!/bin/sh
# Compares the names that a DLL exports, by its import library, with those of the shared object built from the same sources: every
# class, function and overload. Demangled, as the two systems' size_t are spelt differently.
# usage: exports.sh IMPORT_LIBRARY SHARED_OBJECT
set -eu
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
plain() { c++filt | sed 's/unsigned long long/unsigned long/g' | sort -u; }
x86_64-w64-mingw32-nm "$1" | sed -n 's/.* I __imp_//p' | plain >"$scratch/dll"
nm -D --defined-only "$2" | sed 's/^[0-9a-f]* . //' | plain >"$scratch/shared"
test -s "$scratch/shared" || { echo "$2 exports nothing"; exit 1; }
diff -u "$scratch/shared" "$scratch/dll" || { echo "exported by the shared object (-) and by the DLL (+)"; exit 1; }
echo "$(wc -l <"$scratch/dll") names exported by the DLL as by the shared object"
