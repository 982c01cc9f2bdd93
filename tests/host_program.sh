#!/bin/sh
# The host program as a person uses it: pictures in, pictures out, and a clear word when that can't be.
set -u
host=$1
samples=$2
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
succeeds lut --lut silver.3dl many graded3dl
for file in clear.png warm.png graded3dl/one.png graded.png graded-compare.png graded/one.png graded/two.jpg both/one.png both/two.jpg; do
  [ -s "$file" ] || fail "$file was not written"
done
cmp -s graded.png many/one.png && fail "the grade changed nothing"
cmp -s same.png many/one.png || fail "strength 0 changed the picture"

echo text > broken.cube
echo text > broken.png
mkdir empty
refuses "no LUT file 'none.cube'" lut --lut none.cube many/one.png x.png
refuses "'broken.cube' is not a LUT" lut --lut broken.cube many/one.png x.png
refuses "cannot read picture 'none.png'" lut --lut "$samples/silver.cube" none.png x.png
refuses "cannot read picture 'broken.png'" lut --lut "$samples/silver.cube" broken.png x.png
refuses "cannot write picture" lut --lut "$samples/silver.cube" many/one.png none/x.png
refuses "cannot write picture" lut --lut "$samples/silver.cube" many/one.png x.none
refuses "no pictures in 'empty'" lut --lut "$samples/silver.cube" empty x
exit $failed
