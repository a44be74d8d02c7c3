#!/bin/sh
# A predicate reads the thread's tolerance in place: its generated code calls nothing, in particular no function that finds the
# thread's storage or initialises it.
# usage: predicate_code.sh OBJDUMP LIBRARY
set -eu
code=$("$1" --disassemble=_Z8zbr_EpsEd --no-show-raw-insn "$2" | grep -E '^ +[0-9a-f]+:') || {
  echo "zbr_EpsE(double) not found in $2"
  exit 1
}
if printf '%s\n' "$code" | grep -E 'call|bl[r]? |@plt|__tls_get_addr'; then
  printf 'unexpected call in:\n%s\n' "$code"
  exit 1
fi
printf '%s\n' "$code"
