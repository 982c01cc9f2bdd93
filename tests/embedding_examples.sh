#!/bin/sh
# The C examples build and run, and the C++ code of docs/embedding.md compiles.
#   embedding_examples.sh SOURCES LIBRARY [LUMVANE-HOST]
set -eu
include=$1/include
library=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

{
  printf '#include <%s>\n' lumvane.h filesystem memory
  echo 'void use(const std::filesystem::path& path) {'
  sed -n '/^```cpp$/,/^```$/p' "$1/docs/embedding.md" | grep -v '^```'
  echo '}'
} >"$folder/host.cpp"
cd "$folder"
cc -std=c11 -Wall -Wextra -Wpedantic -Werror -I "$include" "$1/examples/host.c" "$library" -o host
cc -std=c11 -Wall -Wextra -Werror -I "$include" "$1/examples/runtime.c" -o runtime -ldl
c++ -std=c++17 -Wall -Wextra -Wno-unused-variable -Werror -I "$include" -fsyntax-only host.cpp
LD_LIBRARY_PATH=$(dirname "$library")
LC_ALL=C.UTF-8
export LD_LIBRARY_PATH LC_ALL

# The name of the LUT has letters of two, three and four bytes. The upper left of the picture is red, without blue.
lut='ä€😀.cube'
cp "$1/samples/teal_orange.cube" "$lut"
./host "$lut"
for name in graded clear warm; do
  [ "$(wc -c <$name.ppm)" -eq 720015 ]
  tail -c +16 $name.ppm | od -An -tu1 -N3 | awk '{ exit !($1 > 150 && $3 < 60) }'
done
if ./host none.cube || ./host "$(printf '\377.cube')"; then
  echo "a missing LUT file was accepted"
  exit 1
fi
if [ $# -gt 2 ]; then
  "$3" hdr-luts --size 17 luts
  # Y 126 is 50 % of HLG: 50 of 1000 cd/m2 at gamma 1.2; over 203 for white, to the power of 1 / 2.4: 0.561
  ./host "$lut" luts | grep -Eq 'is 1(3[89]|40) in'
fi
./runtime | grep -q 'blue 80, green 100, red 120'
./runtime "$library" | grep -q 'blue 80'
! ./runtime none.so 2>/dev/null
