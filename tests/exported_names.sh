#!/bin/sh
# The shared object exports the functions of lumvane.h and nothing else.
set -eu
found=$(nm -D --defined-only "$1" | awk '{ print $3 }' | sort)
echo "$found" | diff "$(dirname "$0")/exported_names.txt" -
