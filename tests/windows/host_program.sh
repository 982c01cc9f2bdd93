#!/bin/sh
# lumvane-host.exe under Wine: file names in any script, binary pipes, exit codes. The trace ends with the failed
# command.
#   host_program.sh WINE LUMVANE-HOST.EXE SAMPLES
set -eux
wine=$1 program=$2 samples=$3
export LC_ALL=C.UTF-8  # Wine decodes the arguments by it
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
host() { "$wine" "$program" "$@"; }

host scene --width 64 --height 48 'szene ä 漢 𝄞.bmp'
mkdir é
cp "$samples/silver.cube" 'é/𝄞.CUBE'
host lut --lut "$(echo "Z:$PWD/é/𝄞.CUBE" | tr / '\\')" 'szene ä 漢 𝄞.bmp' é/ä.ppm
[ "$(ls é)" = "$(printf 'ä.ppm\n𝄞.CUBE')" ]

# A frame with all bytes, including LF and the DOS end-of-file character, through standard input and output.
host hdr-luts luts
printf 'YUV4MPEG2 W16 H16 F25:1 Ip C420mpeg2\nFRAME\n' >in.y4m
LC_ALL=C awk 'BEGIN { for (i = 0; i < 384; ++i) printf "%c", i % 256 }' >>in.y4m
host hdr --luts luts --transfer hlg in.y4m ä.y4m
host hdr --luts luts --transfer hlg - - <in.y4m | cmp - ä.y4m

while read -r code arguments; do
  # shellcheck disable=SC2015,SC2086  # a list of words
  host $arguments 2>message </dev/null && status=0 || status=$?
  [ "$status" -eq "$code" ] && [ -s message ]
done <<CASES
2 nonsense
2 clarity é/ä.ppm É/Ä.PPM
3 lut --lut missing.cube é/ä.ppm x.ppm
4 scene nowhere/x.ppm
CASES
