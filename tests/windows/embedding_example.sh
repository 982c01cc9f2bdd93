#!/bin/sh
# A program that loads the DLL at run time: embedding_example.sh COMPILER WINE LUMVANE.DLL SOURCES
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp "$3" "$folder"
cd "$folder"
"$1" -std=c11 -Wall -Wextra -Werror -I "$4/include" "$4/examples/runtime.c" -o runtime.exe
"$2" runtime.exe | grep 'blue 80, green 100, red 120'
