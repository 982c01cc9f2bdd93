#!/bin/sh
# The DLL exports the functions of lumvane.h, undecorated, and nothing else; it imports what every Windows has and nothing
# else.
#   dll_contents.sh OBJDUMP LUMVANE.DLL
set -eu
contents=$("$1" -p "$2")
echo "$contents" | sed -n '/Ordinal\/Name/,/^$/s/^[[:space:]]*\[ *[0-9]*\] //p' | awk '{ print $NF }' | sort |
  diff "$(dirname "$0")/../exported_names.txt" -
imports=$(echo "$contents" | sed -n 's/.*DLL Name: //p' | sort | tr '\n' ' ')
echo "imports: $imports"
[ "$imports" = 'KERNEL32.dll msvcrt.dll ' ]
