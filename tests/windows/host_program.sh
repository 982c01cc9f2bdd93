#!/bin/sh
# lumvane-host.exe under Wine: names of files in any letters, pictures byte for byte, pipes that stay binary, exit codes.
#   host_program.sh WINE LUMVANE-HOST.EXE SAMPLES
set -eu
wine=$1
program=$2
samples=$3
export LC_ALL=C.UTF-8  # by which Wine reads the arguments
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

host() { "$wine" "$program" "$@"; }
fail() {
  echo "failed: $1" >&2
  exit 1
}
expect_code() {
  expected=$1
  shift
  code=0
  host "$@" 2>message || code=$?
  [ "$code" -eq "$expected" ] && [ -s message ] || fail "exit code $code, not $expected, or no message: $*"
}

host scene --width 64 --height 48 'szene ä 漢 𝄞.bmp'
[ -s 'szene ä 漢 𝄞.bmp' ] || fail 'a scene'
mkdir é
cp "$samples/silver.cube" 'é/𝄞.CUBE'
host lut --lut 'é/𝄞.CUBE' 'szene ä 漢 𝄞.bmp' 'é/out.ppm'
host lut --lut "$(echo "Z:$PWD/é/𝄞.CUBE" | tr / '\\')" 'szene ä 漢 𝄞.bmp' again.ppm
cmp é/out.ppm again.ppm || fail 'the same LUT by another path'
[ "$(ls é)" = "$(printf 'out.ppm\n𝄞.CUBE')" ] || fail 'nothing but the files that were asked for'

# A frame with every byte, LF and the end-of-file mark of old among them, through standard input and output.
host hdr-luts luts
{
  printf 'YUV4MPEG2 W16 H16 F25:1 Ip C420mpeg2\nFRAME\n'
  LC_ALL=C awk 'BEGIN { for (i = 0; i < 384; ++i) printf "%c", i % 256 }'
} >in.y4m
host hdr --luts luts --transfer hlg in.y4m out.y4m
host hdr --luts luts --transfer hlg - - <in.y4m >piped.y4m
cmp out.y4m piped.y4m || fail 'standard input and output'

expect_code 2 nonsense
cp in.y4m ä.y4m
expect_code 2 hdr --luts luts --transfer hlg ä.y4m Ä.Y4M  # one name to Windows
expect_code 3 lut --lut missing.cube again.ppm x.ppm
expect_code 4 scene nowhere/x.ppm
