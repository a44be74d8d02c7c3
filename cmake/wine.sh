#!/bin/sh
# Runs a program for Windows: no display, no questions, file names and arguments in UTF-8. What Wine keeps is in the folder $WINEPREFIX,
# by default one in build/.
# usage: wine.sh PROGRAM [ARGUMENT...]
WINEPREFIX=${WINEPREFIX:-$(cd "$(dirname "$0")/.." && pwd)/build/wine} WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES
unset DISPLAY
LC_ALL=C.UTF-8 exec wine "$@"
