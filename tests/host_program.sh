#!/bin/sh
# The host program as a person uses it: pictures in, pictures out, and a clear word when that can't be.
set -u
host=$1
samples=$2
locales=$3
convert=$(realpath "$(dirname "$0")/../scripts/cube-to-3dl")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
failed=0

fail() {
  echo "failed: $*"
  failed=1
}

# succeeds ARGUMENTS...: exit code 0
succeeds() {
  "$host" "$@" || fail "$host $*"
}

# refuses WORDS ARGUMENTS...: exit code 1, with WORDS in the message
refuses() {
  words=$1
  shift
  message=$("$host" "$@" 2>&1)
  code=$?
  [ $code -eq 1 ] || fail "exit code $code of: $host $*"
  case $message in
    *"$words"*) ;;
    *) fail "no '$words' in '$message'" ;;
  esac
}

mkdir many
succeeds scene --width 320 --height 180 many/one.png
succeeds scene --width 64 --height 36 many/two.jpg
succeeds lut --lut "$samples/silver.cube" --strength 60 --compare many/one.png graded.png
succeeds lut --lut "$samples/silver.cube" many graded
succeeds lut --lut "$samples/silver.cube" many/one.png many/two.jpg both
succeeds lut --lut "$samples/silver.cube" --strength 0 many/one.png same.png
succeeds clarity --intensity 70 --saturation 20 many/one.png clear.png
succeeds whitebalance --temperature 0.2 --tint -0.05 many/one.png warm.png
"$convert" "$samples/silver.cube" >silver.3dl
LOCPATH=$locales LC_ALL=de_DE.UTF-8 "$convert" "$samples/silver.cube" | cmp - silver.3dl || fail "a decimal comma"
succeeds lut --lut silver.3dl many graded3dl
for file in clear.png warm.png graded3dl/one.png graded.png graded-compare.png graded/one.png graded/two.jpg both/one.png both/two.jpg; do
  [ -s "$file" ] || fail "$file was not written"
done
cmp -s graded.png many/one.png && fail "the grade changed nothing"
cmp -s same.png many/one.png || fail "strength 0 changed the picture"

succeeds hdr-luts --size 9 luts
for transfer in hlg pq; do
  succeeds hdr-clip --transfer $transfer --frames 3 --width 161 --height 91 $transfer.y4m
  succeeds hdr --luts luts --transfer $transfer $transfer.y4m out-$transfer.y4m
  "$host" hdr --luts luts --transfer $transfer --range limited - - <$transfer.y4m >pipe-$transfer.y4m || fail "a pipe"
  cmp out-$transfer.y4m pipe-$transfer.y4m || fail "a pipe and a file differ"
  [ "$(wc -c <out-$transfer.y4m)" -gt "$((3 * 161 * 91 * 3 / 2))" ] || fail "out-$transfer.y4m is too short"
  succeeds still --frame 2 out-$transfer.y4m still-$transfer.png
done

echo text > broken.y4m
head -c 9000 hlg.y4m > short.y4m
sed '1s/C420mpeg2/C444/' hlg.y4m > other.y4m
refuses "there is no LUT file" hdr --luts none --transfer hlg hlg.y4m x.y4m
refuses "'none.y4m' cannot be read" hdr --luts luts --transfer hlg none.y4m x.y4m
refuses "is no YUV4MPEG2 stream" hdr --luts luts --transfer hlg broken.y4m x.y4m
refuses "ends within a frame" hdr --luts luts --transfer hlg short.y4m x.y4m
cp hlg.y4m same.y4m
refuses "would be written over" hdr --luts luts --transfer hlg same.y4m same.y4m
cmp same.y4m hlg.y4m || fail "a video that was to be read was written over"
mkdir broken
echo text > broken/HDR_HLG.cube
refuses "cannot be used" hdr --luts broken --transfer hlg hlg.y4m x.y4m
sed '1s/Ip/It/' hlg.y4m > interlaced.y4m
refuses "is interlaced" hdr --luts luts --transfer hlg interlaced.y4m x.y4m
sed '1s/LIMITED/FULL/' hlg.y4m > full.y4m
succeeds hdr --luts luts --transfer hlg full.y4m out-full.y4m
succeeds hdr --luts luts --transfer hlg --range full hlg.y4m out-full-too.y4m
cmp out-full.y4m out-full-too.y4m || fail "the range that a video names is not taken"
refuses "C444" hdr --luts luts --transfer hlg other.y4m x.y4m
refuses "cannot write video" hdr --luts luts --transfer hlg hlg.y4m none/x.y4m
refuses "cannot write video" hdr --luts luts --transfer hlg hlg.y4m /dev/full
refuses "is shorter" still --frame 3 hlg.y4m x.png

echo text > broken.cube
echo text > broken.png
mkdir empty
refuses "no LUT file 'none.cube'" lut --lut none.cube many/one.png x.png
refuses "'broken.cube' cannot be used" lut --lut broken.cube many/one.png x.png
refuses "there is no picture 'none.png'" lut --lut "$samples/silver.cube" none.png x.png
refuses "cannot read picture 'broken.png'" lut --lut "$samples/silver.cube" broken.png x.png
refuses "cannot write picture" lut --lut "$samples/silver.cube" many/one.png none/x.png
refuses "no format has this extension" lut --lut "$samples/silver.cube" many/one.png x.none
refuses "would be written over" lut --lut "$samples/silver.cube" many many
refuses "two pictures would go to" lut --lut "$samples/silver.cube" many/one.png graded/one.png x
refuses "1 of 2 pictures failed" lut --lut "$samples/silver.cube" broken.png many/one.png some
[ -s some/one.png ] || fail "one bad picture kept another from being graded"
refuses "cannot make the folder" lut --lut "$samples/silver.cube" many same.png
refuses "no pictures in 'empty'" lut --lut "$samples/silver.cube" empty x
exit $failed
