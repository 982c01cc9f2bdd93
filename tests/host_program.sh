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

# refuses CODE WORDS ARGUMENTS...: this exit code, with WORDS in the message
usage=2 input=3 output=4
refuses() {
  expected=$1
  words=$2
  shift 2
  message=$("$host" "$@" 2>&1)
  code=$?
  [ $code -eq "$expected" ] || fail "exit code $code, not $expected, of: $host $*"
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
succeeds lut --lut "$samples/silver.cube" --strength 0 many/one.png same.png
succeeds clarity --intensity 70 --saturation 20 many/one.png clear.png
succeeds whitebalance --temperature 0.2 --tint -0.05 many/one.png warm.png
"$convert" "$samples/silver.cube" >silver.3dl
LOCPATH=$locales LC_ALL=de_DE.UTF-8 "$convert" "$samples/silver.cube" | cmp - silver.3dl || fail "a decimal comma"
succeeds lut --lut silver.3dl many graded3dl
for file in clear.png warm.png graded3dl/one.png graded.png graded-compare.png graded/one.png graded/two.jpg; do
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
refuses $input "LUT file 'none/HDR_HLG.cube' cannot be used: No such file" hdr --luts none --transfer hlg hlg.y4m x.y4m
refuses $input "'none.y4m' cannot be read" hdr --luts luts --transfer hlg none.y4m x.y4m
refuses $input "is no YUV4MPEG2 stream" hdr --luts luts --transfer hlg broken.y4m x.y4m
cp out-hlg.y4m kept.y4m
refuses $input "ends within a frame" hdr --luts luts --transfer hlg short.y4m kept.y4m
cmp kept.y4m out-hlg.y4m || fail "half a video took the place of a whole one"
cp hlg.y4m same.y4m
refuses $usage "would be written over" hdr --luts luts --transfer hlg same.y4m same.y4m
cmp same.y4m hlg.y4m || fail "a video that was to be read was written over"
: > nothing.y4m
refuses $input "'nothing.y4m' is empty" hdr --luts luts --transfer hlg nothing.y4m x.y4m
sed '1s/Ip/It/' hlg.y4m > interlaced.y4m
refuses $input "is interlaced" hdr --luts luts --transfer hlg interlaced.y4m x.y4m
sed '1s/LIMITED/FULL/' hlg.y4m > full.y4m
succeeds hdr --luts luts --transfer hlg full.y4m out-full.y4m
succeeds hdr --luts luts --transfer hlg --range full hlg.y4m out-full-too.y4m
cmp out-full.y4m out-full-too.y4m || fail "the range that a video names is not taken"
refuses $input "C444" hdr --luts luts --transfer hlg other.y4m x.y4m
refuses $output "cannot write '/dev/full': No space left" hdr --luts luts --transfer hlg hlg.y4m /dev/full

echo text > broken.cube
echo text > broken.png
refuses $input "'broken.cube' cannot be used: a LUT is" lut --lut broken.cube many/one.png x.png
refuses $input "cannot read picture 'none.png': No such file" lut --lut "$samples/silver.cube" none.png x.png
refuses $input "cannot read picture 'broken.png': it is damaged, or no picture" lut --lut "$samples/silver.cube" broken.png x.png
refuses $output "no format has this extension" lut --lut "$samples/silver.cube" many/one.png x.none
refuses $usage "would be written over" lut --lut "$samples/silver.cube" many many
cp many/one.png one-compare.png
refuses $usage "two pictures would go to 'x/one-compare.png'" clarity --compare many/one.png one-compare.png x
refuses $input "1 of 2 pictures failed" lut --lut "$samples/silver.cube" broken.png many/one.png some
[ -s some/one.png ] || fail "one bad picture kept another from being graded"
: > nothing.png
head -c 900 many/two.jpg > short.jpg
head -c 900 many/one.png > short.png
printf 'LUT_1D_SIZE 2\nLUT_3D_SIZE 2\n0 0 0\n1 1 1\n' | cat - "$samples/silver.cube" > curve.cube
for case in "nothing.png': it is empty" "short.jpg': it is cut off" "short.png': it is damaged"; do
  refuses $input "$case" whitebalance "${case%%\'*}" x.png
done
refuses $input "'many': it is a folder" whitebalance many/one.png many x
refuses $input "one-dimensional" lut --lut curve.cube many/one.png x.png
for number in nan -inf 1e39; do
  refuses $usage "'$number' is no number" whitebalance --tint $number many/one.png x.png
done

# Names that cannot be looked at, or are no text, are faults of the files that they stand for.
ln -s loop.png loop.png
latin=$(printf 'gr\374n')
cp "$samples/silver.cube" "$latin.cube"
refuses $input "cannot read picture 'loop.png': Too many levels" clarity loop.png x.png
refuses $output "cannot write 'loop.png': Too many levels" clarity many/one.png loop.png
refuses $input "its name is no UTF-8" lut --lut "$latin.cube" many/one.png x.png
succeeds clarity many/one.png "$latin/"

# What a format cannot hold: a JPEG has up to 65535 rows.
{ printf 'P5 1 70000 255\n' && head -c 70000 /dev/zero; } > tall.pgm
refuses $output ".jpg holds no 1 x 70000 pixels" clarity tall.pgm x.jpg

# A picture that a camera held upright, as its EXIF tells (orientation 6), comes out upright.
{
  printf '\377\330\377\341\0\042Exif\0\0MM\0\052\0\0\0\010\0\001\001\022\0\003\0\0\0\001\0\006\0\0\0\0\0\0'
  tail -c +3 many/two.jpg
} > turned.jpg
succeeds whitebalance turned.jpg upright.png
[ "$(od -An -tu1 -j16 -N8 upright.png | tr -s ' ')" = " 0 0 0 36 0 0 0 64" ] || fail "a turned picture stayed turned"

# What is written takes its name when it is complete, through a symbolic link as well, and never half of it.
for code in INT TERM QUIT; do
  timeout -s $code 0.3 "$host" hdr-clip --transfer hlg --frames 100000 never.y4m
  [ $? -eq 124 ] || fail "a long clip ended before it was interrupted"
done
ln -s graded.png link.png
succeeds whitebalance many/one.png link.png
[ -h link.png ] || fail "a link was written over"
for file in x.png x.y4m none never.y4m* ./*.part */*.part; do
  [ ! -e "$file" ] || fail "$file was left"
done

# Progress is for terminals.
noise=$("$host" hdr-clip --transfer hlg --frames 3 --width 64 --height 36 quiet.y4m 2>&1)
[ -z "$noise" ] || fail "words where there is no terminal: $noise"
if command -v script >/dev/null; then
  script -qec "'$host' hdr-clip --transfer hlg --frames 40 seen.y4m" /dev/null | grep -q '/40 frames, .* a second, .* left' ||
    fail "no progress on a terminal"
fi

for command in "" lut clarity whitebalance hdr-luts hdr hdr-clip still scene; do
  # shellcheck disable=SC2086  # nothing, for the program's own help
  "$host" $command --help | grep -q 'Usage: lumvane-host' || fail "no help for '$command'"
done
exit $failed
