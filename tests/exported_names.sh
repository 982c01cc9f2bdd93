#!/bin/sh
# A shared library exports the functions that lumvane.h declares, and nothing else:
#   exported_names.sh LUMVANE.H LIBRARY|-  (-: the exported names are on standard input)
set -eu
declared=$(sed -n 's/^LUMVANE_API[^(]*[ *]\([A-Za-z0-9]*\)(.*/\1/p' "$1" | sort)
found=$(if [ "$2" = - ]; then cat; else nm -D --defined-only "$2" | awk '{ print $3 }'; fi | sort)
[ "$found" = "$declared" ] || { printf 'declared:\n%s\nexported:\n%s\n' "$declared" "$found"; exit 1; }
