#!/bin/sh
# The program for Windows in docs/embedding.md builds as it stands, and runs.
#   embedding_example.sh COMPILER WINE LUMVANE.DLL EMBEDDING.MD
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
awk '$0 == "```" { inside = 0 } inside { print } $0 == "```c windows" { inside = 1 }' "$4" >"$folder/windows.c"
cp "$3" "$folder"
cd "$folder"
"$1" -std=c11 -Wall -Wextra -Werror windows.c -o windows.exe
"$2" windows.exe | grep 'no LUT of this name'
