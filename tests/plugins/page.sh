#!/bin/sh
# Each command of docs/plugins.md that converts a file runs unchanged, gives the colours of lumvane-host, and keeps size,
# pixel format and colour tags:
#   page.sh SOURCES LUMVANE-HOST FREI0R_FOLDER [GSTREAMER_FOLDER]
# Commands of hosts that are not installed are skipped; exit code 77 if FFmpeg is not installed.
set -eu
host=$2
export FREI0R_PATH="$3" GST_PLUGIN_PATH="${4:-}"
command -v ffmpeg >/dev/null || { echo "skipped: ffmpeg is not installed"; exit 77; }
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
export GST_REGISTRY="$folder/registry" LC_ALL=C
ln -s "$1/samples" samples
cp samples/silver.cube look.cube
cp samples/silver.cube a:b.cube
# A command ends where the next one begins, or with its block.
awk '/^```/ { inside = $0 == "```sh"; taken = 0; next } inside && /^(ffmpeg|melt|gst-launch-1.0) / { taken = ++n }
  taken { print >taken ".sh" }' "$1/docs/plugins.md"

ffmpeg() { command ffmpeg -nostdin -v error -y "$@"; }
marks() {
  ffprobe -v error -select_streams v -of csv=p=0 "$@" -show_entries \
    stream=width,height,pix_fmt,color_range,color_space,color_transfer,color_primaries
}
to_bt709=scale=out_color_matrix=bt709:out_range=tv,format=yuv420p
from_bt709=scale=in_color_matrix=bt709
bt709=setparams=range=tv:colorspace=bt709:color_trc=bt709:color_primaries=bt709
# average PICTURES: prints the average colours of 20 x 12 areas of each
average() { ffmpeg -i "$1" -vf "$from_bt709,format=rgb24,scale=20:12:flags=area" -f rawvideo - | od -An -v -tu1 -w1; }

# clips WIDTH: makes in.mp4 with colour tags, unmarked.mp4 without, and their frames in folder frames
clips() {
  [ "$1" != "${width:-}" ] || return 0
  width=$1
  rm -rf frames
  mkdir frames
  "$host" scene --width "$1" --height 360 scene.png
  for marked in "in $bt709" "unmarked setparams=colorspace=unknown"; do
    ffmpeg -loop 1 -i scene.png -frames:v 3 -vf "$to_bt709,${marked#* }" -crf 5 "${marked% *}.mp4"
  done
  ffmpeg -i in.mp4 -vf "$from_bt709,format=rgb24" frames/%d.png
}

# hdr_clip TRANSFER NAME: makes hdr.mkv, 10-bit, and right.mkv, its frames converted by lumvane-host
hdr_clip() {
  "$host" hdr-clip --transfer "$1" --frames 3 clip.y4m
  ffmpeg -i clip.y4m -pix_fmt yuv420p10le -color_primaries bt2020 -color_trc "$2" -colorspace bt2020nc \
    -x265-params log-level=none:crf=8 -c:v libx265 hdr.mkv
  ffmpeg -i hdr.mkv -pix_fmt yuv420p -f yuv4mpegpipe - | "$host" hdr --luts luts --transfer "$1" - right.y4m
  ffmpeg -i right.y4m -vf "$bt709" -c:v ffv1 right.mkv
}

# check LINE MARKED RIGHT: out.mp4 has the colour tags of MARKED and the colours of RIGHT
check() {
  [ "$(marks out.mp4)" = "$(marks "$2")" ] || { echo "$(cat "$1") gives $(marks out.mp4), not $(marks "$2")"; exit 1; }
  average out.mp4 >out.txt
  average "$3" >right.txt
  # Confusing BT.601 with BT.709 shifts colours by 24 levels; rounding and coding by 4 in FFmpeg, 9 in GStreamer.
  paste out.txt right.txt | awk -v line="$(cat "$1")" '{ d = $1 - $2; if (d < 0) d = -d; if (d > worst) worst = d }
    END { if (NR < 2160 || worst > 12) { print line " is off by " worst " in " NR " values"; exit 1 } }'
}

"$host" hdr-luts --size 17 luts
checked=0
for line in *.sh; do
  program=$(cut -d ' ' -f 1 "$line" | head -n 1)
  command -v "$program" >/dev/null || continue
  if [ "$program" = gst-launch-1.0 ]; then
    # shellcheck disable=SC2013  # words
    for element in $(grep -o 'frei0r-[a-z0-9-]*\|lumvanehdr\|x264enc\|capssetter' "$line") decodebin mp4mux avdec_h264; do
      gst-inspect-1.0 "$element" >/dev/null 2>&1 || continue 2
    done
    sed -i 's/^gst-launch-1.0/timeout 60 & -q/; s/autovideosink/fakesink/' "$line"
  fi
  checked=$((checked + 1))
  rm -f out.mp4
  if grep -q lumvanehdr "$line"; then
    for transfer in 'hlg arib-std-b67' 'pq smpte2084'; do
      # shellcheck disable=SC2086  # two words
      hdr_clip $transfer
      (. "./$line") >messages 2>&1 || { cat messages; exit 1; }
      grep -q fakesink "$line" || check "$line" right.mkv right.mkv
    done
    continue
  fi
  case $(cat "$line") in
    *lumvane?lut*teal_orange*0.6*) effect='lut --lut samples/teal_orange.cube --strength 60' ;;
    *lumvane_lut:*.cube,*) effect='lut --lut look.cube' ;;
    *lumvane?clarity*0.7*0.6*) effect='clarity --intensity 70 --saturation 20' ;;
    *lumvane_clarity:0.7,*) effect='clarity --intensity 70' ;;
    *lumvane?white*balance*0.6*0.48*) effect='whitebalance --temperature 0.2 --tint -0.04' ;;
    *) echo "no expected colours for: $(cat "$line")"; exit 1 ;;
  esac
  if grep -q 854 "$line"; then clips 854; else clips 640; fi
  rm -rf graded
  # shellcheck disable=SC2086  # a list of words
  "$host" $effect frames graded
  for _ in 1 2 3; do
    (. "./$line") >messages 2>&1 || { cat messages; exit 1; }
    # Occasionally melt ends without finishing its file.
    if [ "$program" != melt ] || ffprobe -v error out.mp4 >/dev/null 2>&1; then break; fi
  done
  check "$line" in.mp4 graded/%d.png
done
echo "$checked lines"
[ $checked -gt 0 ]
