#!/bin/sh
# The element lumvanehdr gives lumvane-host's bytes, tags them, and reports input that it does not support:
#   gstreamer_hdr.sh LUMVANE-HOST PLUGIN_FOLDER
# Exit code 77 if FFmpeg, GStreamer, or a GStreamer plug-in that the test needs, is not installed.
set -eu
host=$1
export GST_PLUGIN_PATH="$2"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
export GST_REGISTRY="$folder/registry"
for needed in ffmpeg gst-launch-1.0; do
  command -v $needed >/dev/null || { echo "skipped: $needed is not installed"; exit 77; }
done
for needed in y4mdec capssetter videoconvert avenc_ffv1 matroskamux; do
  gst-inspect-1.0 --exists $needed || { echo "skipped: GStreamer has no $needed"; exit 77; }
done
"$host" hdr-luts --size 17 luts
raw='-f rawvideo -pix_fmt yuv420p'
mastering='mastering-display-info=(string)13250:34500:7500:3000:34000:16000:15635:16450:10000000:1'

# Both kinds of strides: rows of a stream are packed, those that GStreamer allocates are multiples of 4 bytes.
while read -r transfer range format width height in out tags; do
  "$host" hdr-clip --transfer "$transfer" --frames 3 --width "$width" --height "$height" clip.y4m
  "$host" hdr --luts luts --transfer "$transfer" --range "$range" clip.y4m right.y4m
  timeout 60 gst-launch-1.0 -q filesrc location=clip.y4m ! y4mdec ! \
    capssetter "caps=video/x-raw,colorimetry=$in,$mastering,content-light-level=(string)1000:400" ! videoconvert ! \
    "video/x-raw,format=$format" ! lumvanehdr luts=luts ! "video/x-raw,format=$format,colorimetry=$out" ! \
    videoconvert ! avenc_ffv1 ! matroskamux ! filesink location=out.mkv
  # shellcheck disable=SC2086  # a list of words
  for clip in out.mkv right.y4m; do ffmpeg -nostdin -v error -y -i $clip $raw $clip.raw; done
  cmp out.mkv.raw right.y4m.raw
  # The metadata of the HDR mastering is gone.
  [ "$(ffprobe -v error -of csv=p=0 out.mkv -show_entries \
    stream=color_range,color_space,color_transfer,color_primaries:stream_side_data=side_data_type)" = "$tags" ]
done <<CASES
hlg limited I420 161 91 bt2100-hlg bt709 tv,bt709,bt709,bt709
pq limited YV12 324 90 bt2100-pq bt709 tv,bt709,bt709,bt709
pq full I420 324 91 1:6:14:7 1:3:5:1 pc,bt709,bt709,bt709
hlg full YV12 161 90 1:6:15:7 1:3:5:1 pc,bt709,bt709,bt709
pq limited I420 64 64 0:6:14:7 bt709 tv,bt709,bt709,bt709
CASES

# Words of the error | format and colorimetry | properties
mkdir none
cp -r luts others
# After an error gst-launch-1.0 occasionally hangs, with other elements too.
while IFS='|' read -r words caps properties; do
  code=0
  # shellcheck disable=SC2086
  timeout 10 gst-launch-1.0 videotestsrc ! "video/x-raw,$caps" ! videoconvert ! lumvanehdr $properties ! fakesink \
    >messages 2>&1 || code=$?
  if [ $code -eq 0 ] || ! grep -q "^ERROR: .*$words" messages; then
    echo "$caps, $properties: no '$words' in:"
    cat messages
    exit 1
  fi
done <<CASES
not marked as BT.2020 with an HLG or PQ transfer: colorimetry bt709|format=I420_10LE,colorimetry=bt709|luts=luts
colorimetry bt2020|format=I420,colorimetry=bt2020|luts=luts
'none' has no HDR_PQ.cube|format=I420,colorimetry=bt2100-pq|luts=none
'none' has no HDR_HLG.cube|format=I420_10LE,colorimetry=bt2100-hlg|luts=none
property luts is not set|format=I420,colorimetry=bt2100-pq|
this process already has its HDR LUTs from|format=I420,colorimetry=bt2100-hlg|luts=luts ! fakesink videotestsrc ! video/x-raw,format=YV12,colorimetry=bt2100-pq ! lumvanehdr luts=others
CASES
