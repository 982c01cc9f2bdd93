#!/bin/sh
# The programs in docs/embedding.md build as they stand, and run: embedding_examples.sh SOURCES LIBRARY [LUMVANE-HOST]
set -eu
page=$1/docs/embedding.md
include=$1/include
library=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# blocks KIND: the contents of all blocks of this kind, one after another
blocks() {
  awk -v start="\`\`\`$1" '$0 == "```" { inside = 0 } inside { print } $0 == start { inside = 1 }' "$page"
}

blocks c >"$folder/host.c"
blocks 'c dlopen' >"$folder/runtime.c"
{
  echo '#include <lumvane.h>'
  echo '#include <filesystem>'
  echo '#include <memory>'
  echo 'void use(const std::filesystem::path& path) {'
  blocks cpp
  echo '}'
} >"$folder/host.cpp"
cd "$folder"
[ "$(grep -c 'host.c, piece' host.c)" -eq 7 ]
cc -std=c11 -Wall -Wextra -Wpedantic -Werror -I "$include" host.c "$library" -o host
cc -std=c11 -Wall -Wextra -Werror runtime.c -o runtime -ldl
c++ -std=c++17 -Wall -Wextra -Wno-unused-variable -Werror -I "$include" -fsyntax-only host.cpp
LD_LIBRARY_PATH=$(dirname "$library")
export LD_LIBRARY_PATH

# One pixel of a photo; the LUT has a name of two, three and four bytes a letter.
printf 'P6\n1 1\n255\n\310\170\050' >photo.ppm
lut='ä€😀.cube'
cp "$1/samples/silver.cube" "$lut"
./host photo.ppm "$lut"
for name in graded clear warm; do
  [ "$(wc -c <$name.ppm)" -eq 14 ]
  ! cmp -s photo.ppm $name.ppm || [ $name = clear ] || { echo "$name.ppm is as it was"; exit 1; }
done
if ./host photo.ppm none.cube || ./host photo.ppm "$(printf '\377.cube')"; then
  echo "a LUT that is not there was used"
  exit 1
fi
if [ $# -gt 2 ]; then
  "$3" hdr-luts --size 17 luts
  # 126 is half of the HLG signal: 50 of 1000 cd/m2 at gamma 1.2, 203 being white, by a power of 1 / 2.4: 0.561
  ./host photo.ppm "$lut" luts | grep -Eq 'is 1(3[89]|40) in'
fi
./runtime | grep -q 'blue 80, green 100, red 120'
./runtime "$library" | grep -q 'blue 80'
! ./runtime none.so 2>/dev/null
