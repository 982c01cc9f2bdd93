#!/bin/sh
# The DLL exports the functions of lumvane.h, undecorated, and nothing else; imports only what every Windows has; may be
# loaded anywhere in 64 bits of addresses; and its data cannot be executed.
#   dll_contents.sh OBJDUMP LUMVANE.H LUMVANE.DLL
set -eu
contents=$("$1" -p "$3")
echo "$contents" | sed -n '/Ordinal\/Name/,/^$/s/^[[:space:]]*\[ *[0-9]*\] //p' | awk '{ print $NF }' |
  "$(dirname "$0")/../exported_names.sh" "$2" -
imports=$(echo "$contents" | sed -n 's/.*DLL Name: //p' | sort | tr '\n' ' ')
echo "imports: $imports"
for word in HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT; do echo "$contents" | grep "$word"; done
[ "$imports" = 'ADVAPI32.dll KERNEL32.dll msvcrt.dll ' ]
