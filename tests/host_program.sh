#!/bin/sh
# The host program as a user runs it: pictures in, pictures out, and clear messages on failure. The trace ends with the
# failed command.
#   host_program.sh LUMVANE-HOST SAMPLES FOLDER_OF_LOCALES
set -eux
host=$1 samples=$2 locales=$3
convert=$(realpath "$(dirname "$0")/../scripts/cube-to-3dl")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

mkdir many
"$host" scene --width 320 --height 180 many/one.png
"$host" scene --width 64 --height 36 many/two.JPG
"$convert" "$samples/silver.cube" >silver.3dl
LOCPATH=$locales LC_ALL=de_DE.UTF-8 "$convert" "$samples/silver.cube" | cmp - silver.3dl
"$host" lut --lut silver.3dl --strength 60 --compare many/one.png graded.png
if cmp graded.png many/one.png; then exit 1; fi
"$host" lut --lut "$samples/silver.cube" many graded
[ "$(ls graded)" = "$(ls many)" ]
"$host" lut --lut "$samples/silver.cube" --strength 0 many/one.png same.png
cmp same.png many/one.png
"$host" lut --lut silver.3dl --strength 0 many/one.png same.webp
for file in same.png same.webp; do "$host" lut --lut silver.3dl --premultiply $file "premultiplied-${file#*.}.ppm"; done
cmp premultiplied-png.ppm premultiplied-webp.ppm
"$host" clarity --intensity 70 --saturation 20 many/one.png clear.png
ln -s clear.png warm.png
"$host" whitebalance --temperature 0.2 --tint -0.05 many/one.png warm.png
[ -h warm.png ]
# An overwritten file keeps its permissions and its hard links.
chmod 600 clear.png
ln clear.png other.png
"$host" whitebalance many/one.png clear.png
cmp clear.png other.png
rm other.png
"$host" whitebalance many/one.png clear.png
[ "$(stat -c %a clear.png)" = 600 ]

# Greys of the HDR LUTs: 50 % and 75 % of HLG are 50.7 and 203 cd/m2, 50 % of PQ is 92.2. Light up to 88 cd/m2 is kept,
# on a display of 203 cd/m2 and gamma 2.4. The fourth line is a green outside BT.709, which moves to the gamut boundary;
# the last takes the result of the first for a code, with black at 64 and white at 940 of 1023.
"$host" hdr-luts --size 5 luts
"$host" hdr-luts --size 5 --hlg luts/HDR_HLG.cube --pq luts/HDR_PQ.cube --codes-out narrow narrow
while read -r made name line rgb; do
  [ "$(sed -n "${line}s/\(\.....\)../\1/gp" "$made/HDR_$name.cube")" = "$rgb" ]
done <<LINES
luts HLG 65 0.5609 0.5609 0.5609
luts HLG 96 0.9034 0.9034 0.9034
luts PQ 65 0.7196 0.7196 0.7196
luts PQ 23 0.0000 1.0000 0.5910
narrow HLG 65 0.5820 0.5820 0.5820
LINES
for transfer in hlg pq; do
  "$host" hdr-clip --transfer $transfer --frames 3 --width 161 --height 91 $transfer.y4m
  "$host" hdr --luts luts --transfer $transfer $transfer.y4m out-$transfer.y4m
  "$host" hdr --luts luts --transfer $transfer --range limited - - <$transfer.y4m | cmp - out-$transfer.y4m
done
"$host" still --frame 2 out-hlg.y4m still.ppm
sed '1s/F25:1 Ip A0:0/F24:1 Ip A4:3/' hlg.y4m >film.y4m
sed '1s/LIMITED/FULL/' film.y4m | "$host" hdr --luts luts --transfer hlg - out-full.y4m
"$host" hdr --luts luts --transfer hlg --range full film.y4m - | cmp - out-full.y4m
head -n 1 out-full.y4m | grep ' F24:1 Ip A4:3 .*=FULL'

# A LUT made from a third-party cube gives FFmpeg's result for that cube, with its codes and domain, except for the few
# colours next to a negative value. The library's rounding differs by up to 1.
# shellcheck disable=SC2016  # programs of awk
if command -v ffmpeg; then
  "$host" scene --width 320 --height 180 in.ppm
  pixels() { tail -c 172800 "$1" | od -An -v -tu1 -w1; }
  while read -r codes low high scale black; do
    set -- -v low="$low" -v high="$high" -v scale="$scale" -v black="$black"
    awk "$@" 'function out(v) { return (v < -0.07 ? -0.07 : v) * scale + black }
      function light(i) { i = (low + (high - low) * i / 32 - black) / scale; return i < 0 ? 0 : i ^ 0.7 }
      BEGIN { print "LUT_3D_SIZE 33\nDOMAIN_MIN", low, low, low; print "DOMAIN_MAX", high, high, high
        for (i = 0; i < 33 ^ 3; ++i) { r = light(i % 33); g = light(int(i / 33) % 33); b = light(int(i / 1089))
          print out(1.66 * r - 0.59 * g - 0.07 * b), out(1.13 * g - 0.13 * r), out(1.12 * b - 0.12 * g) } }' >cube.cube
    "$host" hdr-luts --hlg cube.cube --pq cube.cube --codes "$codes" made
    cmp made/HDR_HLG.cube made/HDR_PQ.cube
    "$host" lut --lut made/HDR_HLG.cube in.ppm out.ppm
    pixels in.ppm | LC_ALL=C awk "$@" '{ v = int(65535 * ($1 / 255 * scale + black - low) / (high - low) + 0.5)
      printf "%c%c", v % 256, v / 256 }' >in.raw
    grep -v DOMAIN cube.cube >plain.cube
    ffmpeg -nostdin -v error -f rawvideo -pix_fmt rgb48le -s 320x180 -i in.raw -vf lut3d=plain.cube -f rawvideo - |
      od -An -v -tu2 -w2 >expected
    pixels out.ppm | paste - expected | awk "$@" '{ v = ($2 / 65535 - black) / scale * 255
      d = $1 - (v < 0 ? 0 : v > 255 ? 255 : v); if (d * d > 1.2 ^ 2) ++far; if (d * d > 6 ^ 2) exit far = 999 }
      END { print far; exit far > 300 }'
  done <<ROWS
full 0 1 1 0
full -0.073 1.095 1 0
narrow 0 1 0.856305 0.0625611
ROWS
fi

# Exit code | words of the message | standard input | arguments
ln -s one.png many/link.png
mkfifo pipe.cube
mkdir -p damaged made
head -n 99 luts/HDR_HLG.cube >damaged/HDR_HLG.cube  # valid points, including a grey
{ printf 'P6 30000 30000 255 '; head -c 99999 /dev/zero; } >huge.ppm
latin=$(printf 'gr\374n')  # not UTF-8
cp silver.3dl "$latin.3dl"
red=$(printf '\033[31mred\302\233m')  # turns a terminal red, and back
hdr='hdr --transfer hlg --luts'
while IFS='|' read -r code words input arguments; do
  if [ "$words" = --memory ] && ldd "$host" | grep libasan; then continue; fi  # the address sanitizer reserves terabytes
  eval "$input" >input.y4m
  # shellcheck disable=SC2015,SC2086  # a list of words
  message=$("$host" $arguments <input.y4m 2>&1) && status=0 || status=$?
  case $status$message in "$code"*"$words"*) ;; *) exit 1 ;; esac
done <<CASES
3|'none/HDR_HLG.cube': No such file||$hdr none hlg.y4m x.y4m
3|not a YUV4MPEG2|echo text|$hdr luts input.y4m x.y4m
3|ends within a frame|cp hlg.y4m kept.y4m; head -c 9000 hlg.y4m|$hdr luts input.y4m kept.y4m
3|--memory|echo YUV4MPEG2 W16384 H16384|$hdr luts input.y4m x.y4m
3|--memory||clarity huge.ppm x.png
3|not a regular file||lut --lut pipe.cube many/one.png x.png
3|not a regular file||lut --lut /dev/zero many/one.png x.png
3|larger than any LUT|truncate -s 2G big.cube|lut --lut big.cube many/one.png x.png
3|'damaged/HDR_HLG.cube': it has 97 rows||$hdr damaged hlg.y4m x.y4m
3|wrap around to white, first row 5: -0.003 0 0;|sed '6s/.*/-0.0029 0 0/; 7s/.*/-0.003 0 0/; 2iDOMAIN_MAX 2 2 2' luts/HDR_HLG.cube >made/HDR_HLG.cube|$hdr made hlg.y4m x.y4m
0|it is ignored|sed '7s/.*/-0.003 0 0/; 2iLUT_3D_INPUT_RANGE 0 2' luts/HDR_HLG.cube >made/HDR_HLG.cube|$hdr made hlg.y4m y.y4m
3|one-dimensional|echo LUT_1D_SIZE 2 >curve.cube|hdr-luts --hlg curve.cube x
3|'?[31mred?m'||clarity $red x.png
3|C444|sed 1s/C420mpeg2/C444/ hlg.y4m|$hdr luts - x.y4m
3|is interlaced|sed 1s/Ip/It/ hlg.y4m|$hdr luts - x.y4m
2|both the input and the output||$hdr luts kept.y4m ./kept.y4m
4|'/dev/full': No space left||$hdr luts hlg.y4m /dev/full
3|one-dimensional|echo LUT_1D_SIZE 2 >curve.cube|lut --lut curve.cube many/one.png x.png
0|has 126 rows, but 5 points per axis need 125; 1 of its rows have fewer|(cat luts/HDR_HLG.cube; echo 1 1) >look.cube|lut --lut look.cube many/one.png y.png
0|domain is 0 0 0 to 2 2 2|sed '2iDOMAIN_MAX 2 2 2' luts/HDR_HLG.cube >look.cube|lut --lut look.cube many/one.png y.png
0|no mesh line|sed 1,3d silver.3dl >look.3dl|lut --lut look.3dl many/one.png y.png
0|16 bits comes out white|sed '9s/$/0000/' silver.3dl >look.3dl|lut --check look.3dl
0|10 bits comes out dark|sed '4,\$s/[0-9][0-9]*/99/g' silver.3dl >look.3dl|lut --check look.3dl
0|128 grey becomes [135, 131, 122]||lut --check silver.3dl
3|tabs, which do not separate entries; its mesh line has a leading, trailing|sed '3s/ /\t/; 3s/$/  /' silver.3dl >look.3dl|lut --check look.3dl
3|not valid UTF-8||lut --lut $latin.3dl many/one.png x.png
3|it is cut off|head -c 900 many/two.JPG >cut.jpg|clarity cut.jpg x.png
3|1 of 2 pictures failed:|head -c 900 many/one.png >cut.png|clarity cut.png many/one.png $latin
4|cannot write picture 'x.jpg'|{ echo P5 1 70000 255; head -c 70000 /dev/zero; } >tall.pgm|clarity tall.pgm x.jpg
2|it is an input||clarity many/one.png many/link.png
2|it is an input||clarity many none/../many
2|a whole number of percent, such as 60, not '0.6'; see||lut --strength 0.6
3|plug-ins|: >clip.mov|clarity clip.mov x.png
0|composited over white||clarity many/one.png y.jpg
0|not a .mp4 file||hdr-clip --transfer pq --frames 1 --width 8 --height 8 y.mp4
0|1 other file left out of 'more'|mkdir more; cp many/*.* more; : >more/text; : >more/._one.png|clarity more done
4|not started|ln -sf /dev/full done/link.png|clarity more done
2|two pictures|cp graded-compare.png one-compare.png|clarity --compare many/one.png one-compare.png x
CASES
cmp kept.y4m hlg.y4m
[ -s "$latin/one.png" ]  # one bad picture does not keep others from being graded

# A picture taken in portrait orientation (EXIF orientation 6) is turned upright.
printf '\377\330\377\341\0\042Exif\0\0MM\0\052\0\0\0\010\0\001\001\022\0\003\0\0\0\001\0\006\0\0\0\0\0\0' >turned.jpg
tail -c +3 many/two.JPG >>turned.jpg
"$host" whitebalance turned.jpg upright.png
[ "$(od -An -tu1 -j16 -N8 upright.png | tr -s ' ')" = " 0 0 0 36 0 0 0 64" ]

# A JPEG file keeps quality and chroma sampling, of which byte 169 has the factors. Colours with a profile become sRGB:
# this one swaps red and green.
printf 'P6 1 1 255 \376\0\0' >red.ppm
"$host" clarity --intensity 0 --saturation -100 red.ppm pale.ppm
"$host" clarity --quality 40 many/one.png forty.jpg
if ldd "$host" | grep liblcms2; then
  for factors in 41 42 22 101 21; do  # octal, of 4:2:2, 4:2:0, 4:4:0, 4:1:1 and 4:4:4
    printf '%b' "\\0$factors" | dd of=forty.jpg bs=1 seek=169 conv=notrunc
    "$host" clarity forty.jpg again.jpg
    cmp -n 600 forty.jpg again.jpg
  done
  "$host" whitebalance red.ppm red.jpg
  "$host" whitebalance red.ppm red.webp
  # shellcheck disable=SC2016  # a program of perl
  perl -e 'sub in { local (@ARGV, $/) = "red.$_[0]"; substr(<>, $_[1]) }
    sub out { open my $file, ">:raw", "tagged.$_[0]"; print $file $_[1] }
    $profile = join "",
      pack("N a4 n2 a4 a4 a4 x12 a4 x28 N3 x48", 280, "", 528, 0, "mntr", "RGB ", "XYZ ", "acsp", 63190, 65536, 54061),
      pack("N(a4N2)6", 6, "gXYZ", 204, 20, "rXYZ", 224, 20, "bXYZ", 244, 20, map(($_, 264, 14), qw(rTRC gTRC bTRC))),
      map(pack("a4 x4 N3", "XYZ ", @$_), [28578, 14581, 912], [25241, 46981, 6362], [9376, 3972, 46799]),
      pack("a4 x4 N n x2", "curv", 1, 563);
    @segments = map(pack("n2 a12 C2 a*", 65506, 16 + length, "ICC_PROFILE", ++$i, 2, $_), unpack("a99 a*", $profile));
    out("jpg", join("", "\xff\xd8", @segments, in("jpg", 2)));
    $webp = "WEBP" . pack("a4 V2 x6 a4 V/a*", "VP8X", 10, 32, "ICCP", $profile) . in("webp", 12);
    out("webp", pack("a4 V/a*", "RIFF", $webp));
    # Two pixels of 16 bits with alpha, the first of them translucent.
    @tags = ([256, 3, 1, 2], [257, 3, 1, 1], [258, 3, 4, 146], [259, 3, 1, 1], [262, 3, 1, 2], [273, 4, 1, 154],
      [277, 3, 1, 4], [278, 3, 1, 1], [279, 4, 1, 16], [338, 3, 1, 2], [34675, 7, 280, 170]);
    out("tif", join("", pack("a4 V v", "II*", 8, 11), map(pack("v2 V2", @$_), @tags),
      pack("x4 v12", (16) x 4, (32896) x 3, 16448, 65280, 0, 0, 65535), $profile))'
  if command -v ffmpeg; then ffmpeg -nostdin -v error -i tagged.jpg tagged.png; fi
  for file in tagged.*; do
    "$host" whitebalance "$file" "$file.ppm"
    tail -c 3 "$file.ppm" | od -An -tu1 | awk '{ exit $1 > 9 || $2 < 245 || $2 > 254 }'
  done
  [ "$(od -An -tu1 -j11 -N3 tagged.tif.ppm | xargs)" = "223 223 223" ]
fi

# Bytes: the quantisation table of quality 40, paler red, grey multiplied by alpha, the sun in frame 2, an orange patch.
while read -r file offset bytes; do
  [ "$(od -An -tu1 -j"$offset" -N3 "$file" | xargs)" = "$bytes" ]
done <<BYTES
forty.jpg 25 20 14 15
pale.ppm 11 254 38 38
premultiplied-png.ppm 32544 189 187 180
still.ppm 14405 255 242 211
still.ppm 36329 249 171 5
BYTES

# An interrupted run leaves no files, nor does a failed one, even when it reaches the limit of the file size.
(ulimit -f 8 && "$host" scene x.png) 2>/dev/null || [ $? -eq 4 ]
for signal in INT TERM QUIT HUP; do
  timeout -s $signal 0.2 "$host" hdr-clip --transfer hlg --frames 100000 x.y4m || [ $? -eq 124 ]
done
[ -z "$(find . -name 'x*' -o -name '*.part')" ]

if script -qec true /dev/null >/dev/null 2>&1; then
  script -qec "'$host' hdr-clip --transfer hlg --frames 20 seen.y4m" /dev/null | grep '/20 frames, .* a second, .* left'
fi

trap '' HUP  # like nohup
"$host" hdr-clip --transfer hlg --frames 12 seen.y4m &
sleep 0.1 && kill -HUP $! && wait $!
