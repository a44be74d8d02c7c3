#!/bin/sh
# Unpacks the zip and uses what is in it: nothing is asked of a machine but what Windows has, the tool runs, and the consumer project
# is built against the package with the same compiler, and runs.
# usage: package.sh ZIP SCRATCH_DIR TOOLCHAIN_FILE RUN     RUN: runs a program for Windows
set -eu
zip=$1 scratch=$2 toolchain=$3 run=$4
consumer=$(cd "$(dirname "$0")/../consumer" && pwd)
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch"
cmake -E tar xf "$zip"
prefix=$scratch/$(basename "$zip" .zip)

for program in "$prefix"/bin/*; do
  x86_64-w64-mingw32-objdump -p "$program" | sed -n 's/.*DLL Name: //p' |
    grep -viE '^(kernel32|advapi32|user32|shell32|msvcrt|libzbr)\.dll$' && { echo "$program needs these besides the system"; exit 1; }
done
test -s "$prefix/share/doc/zbr/LICENSE"
"$run" "$prefix/bin/zbr.exe" --version

cmake -S "$consumer" -B consumer -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_PREFIX_PATH="$prefix" >log
cmake --build consumer >>log || { cat log; exit 1; }
cp "$prefix"/bin/*.dll consumer
"$run" consumer/consumer.exe
"$run" consumer/consumer-drawing.exe
du -k "$zip" "$prefix"/bin/* | sed "s|$scratch/||"
