#!/bin/sh
# The DLL exports the functions of lumvane.h, undecorated, and nothing else, as its .def file says; it imports what every
# Windows has and nothing else.
#   dll_contents.sh OBJDUMP LUMVANE.DLL LUMVANE.DEF
set -eu
contents=$("$1" -p "$2")
exports=$(echo "$contents" | sed -n '/Ordinal\/Name/,/^$/s/^[[:space:]]*\[ *[0-9]*\] //p' | awk '{ print $NF }' | sort)
in_def=$(tr -d '\r' <"$3" | sed -n 's/^ *\([^ ]*\) @.*/\1/p' | sort)
for found in "$exports" "$in_def"; do
  echo "$found" | diff "$(dirname "$0")/../exported_names.txt" -
done
imports=$(echo "$contents" | sed -n 's/.*DLL Name: //p' | sort | tr '\n' ' ')
echo "imports: $imports"
[ "$imports" = 'KERNEL32.dll msvcrt.dll ' ]
