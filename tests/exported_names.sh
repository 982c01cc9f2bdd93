#!/bin/sh
# The shared object exports the functions of lumvane.h and nothing else.
set -eu
expected='Create3DLutColorAdjustEffect
CreateNLEPureCClarity
CreateVideoAdjustColor
Destory3DLutColorAdjustEffect
DestoryNLEPureCClarity
DestroyVideoAdjustColor
Lut3DColorAdjustEffectProcess
NLEPureCClarityProcess
VideoAdjustColorProcess
WhiteBalanceFun'
found=$(nm -D --defined-only "$1" | awk '{ print $3 }' | sort)
if [ "$found" != "$expected" ]; then
  printf 'expected:\n%s\nfound:\n%s\n' "$expected" "$found"
  exit 1
fi
