#!/bin/sh
# The DLL exports the functions of lumvane.h, undecorated, and nothing else, and imports only what every Windows has.
#   dll_contents.sh OBJDUMP LUMVANE.H LUMVANE.DLL
set -eu
contents=$("$1" -p "$3")
echo "$contents" | sed -n '/Ordinal\/Name/,/^$/s/^[[:space:]]*\[ *[0-9]*\] //p' | awk '{ print $NF }' |
  "$(dirname "$0")/../exported_names.sh" "$2" -
imports=$(echo "$contents" | sed -n 's/.*DLL Name: //p' | sort | tr '\n' ' ')
echo "imports: $imports"
[ "$imports" = 'KERNEL32.dll msvcrt.dll ' ]
