#!/bin/sh
# The DLL exports only the functions of lumvane.h, undecorated; imports only DLLs that every Windows has; can be loaded
# anywhere in the 64-bit address space; and its data is not executable.
#   dll_contents.sh OBJDUMP LUMVANE.H LUMVANE.DLL
set -eu
contents=$("$1" -p "$3")
echo "$contents" | sed -n '/Ordinal\/Name/,/^$/s/^[[:space:]]*\[ *[0-9]*\] //p' | awk '{ print $NF }' |
  "$(dirname "$0")/../exported_names.sh" "$2" -
imports=$(echo "$contents" | sed -n 's/.*DLL Name: //p' | sort | tr '\n' ' ')
echo "imports: $imports"
for word in HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT; do echo "$contents" | grep "$word"; done
[ "$imports" = 'ADVAPI32.dll KERNEL32.dll msvcrt.dll ' ]
