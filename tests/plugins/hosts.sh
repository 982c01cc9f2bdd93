#!/bin/sh
# Each plug-in in a real host, over a short clip: the host's output must equal lumvane-host's for the same pictures,
# byte for byte.
#   hosts.sh ffmpeg|melt|gst-launch-1.0 LUMVANE-HOST PLUGIN_FOLDER SAMPLES
# Exit code 77 if the host, or its frei0r support, is not installed.
set -u
host=$1
program=$2
export FREI0R_PATH=$3
lut=$4/teal_orange.cube
for needed in "$host" ffmpeg; do  # FFmpeg also packs the clips
  command -v "$needed" >/dev/null || { echo "skipped: $needed is not installed"; exit 77; }
done
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
failed=0
# Clarity has all its levels from a shorter side of 65 on; MLT slices only heights that divide evenly. FFmpeg pads rows
# to a multiple of 64 bytes without telling its plug-ins, so only widths that are a multiple of 16 work.
height=96
case $host in
  ffmpeg) width=160 ;;
  melt) width=150 ;;
  gst-launch-1.0)
    width=150
    export GST_REGISTRY="$folder/registry"  # the default one lists plug-ins of an earlier FREI0R_PATH
    gst-inspect-1.0 --exists frei0r-filter-lumvane-lut || { echo "skipped: GStreamer has no frei0r"; exit 77; }
    ;;
  *) exit 2 ;;
esac
raw='-f rawvideo -pix_fmt bgra'

run_ffmpeg() {  # run_ffmpeg PLUGIN FIRST SECOND
  # shellcheck disable=SC2086  # a list of words
  ffmpeg -nostdin -v error -y $raw -s ${width}x$height -r 25 -i clip.raw -vf "frei0r=$1:$2|$3" $raw out.raw
}

run_melt() {  # run_melt PLUGIN FIRST SECOND [PROPERTY]
  # A profile of the size of the clip, and RGBA throughout, avoid scaling and conversion. Occasionally melt ends without
  # output, or hangs, even without any filter, so it gets three attempts.
  for _ in 1 2 3; do
    rm -f out.mkv
    timeout 30 melt -silent -profile clip.profile avformat:clip.mkv \
      -filter "frei0r.$1" 0="$2" 1="$3" ${4:+"$4"} \
      -consumer avformat:out.mkv f=matroska vcodec=ffv1 pix_fmt=bgra mlt_image_format=rgba an=1 real_time=-1 \
      >melt.log 2>&1 && [ -s out.mkv ] && break
  done
  [ -s out.mkv ] || { cat melt.log; return 1; }
  # shellcheck disable=SC2086
  ffmpeg -nostdin -v error -y -i out.mkv $raw out.raw
}

run_gst() {  # run_gst PLUGIN FIRST SECOND
  case $1 in
    lumvane_lut) set -- lut path "$2" strength "$3" ;;
    lumvane_clarity) set -- clarity intensity "$2" saturation "$3" ;;
    lumvane_whitebalance) set -- white-balance temperature "$2" tint "$3" ;;
  esac
  timeout 60 gst-launch-1.0 -q filesrc location=clip.raw ! rawvideoparse format=bgra width=$width height=$height ! \
    "frei0r-filter-lumvane-$1" "$2=$3" "$4=$5" ! filesink location=out.raw
}

# expect COMMAND...: writes the frames that lumvane-host produces to expected.raw
expect() {
  rm -rf graded
  "$program" "$@" clip graded || exit 1
  # shellcheck disable=SC2086
  ffmpeg -nostdin -v error -y -i graded/%d.png $raw expected.raw || exit 1
}

# gives PLUGIN FIRST SECOND [PROPERTY]: checks that the host's frames equal those in expected.raw
gives() {
  rm -f out.raw
  "run_${host%%-*}" "$@" && cmp out.raw expected.raw || { echo "failed: $host, $*"; failed=1; }
}

# Gradients with noise, different in each channel; opaque on the left, random alpha on the right.
mkdir clip
ffmpeg -nostdin -v error -f lavfi -i "nullsrc=s=${width}x$height:r=25,format=rgba,geq=r='60*N+40*random(1)':\
g='220*Y/H+30*random(2)':b='220*X/W+30*random(3)':a='if(lt(2*X,W),255,255*random(4))'" -frames:v 4 clip/%d.png || exit 1
# shellcheck disable=SC2086
ffmpeg -nostdin -v error -i clip/%d.png $raw clip.raw || exit 1
if [ "$host" = melt ]; then
  ffmpeg -nostdin -v error -i clip/%d.png -pix_fmt bgra -c:v ffv1 clip.mkv || exit 1
  # melt requires a description in a profile.
  cat >clip.profile <<END
description=clip
frame_rate_num=25
frame_rate_den=1
width=$width
height=$height
progressive=1
sample_aspect_num=1
sample_aspect_den=1
display_aspect_num=$width
display_aspect_den=$height
colorspace=709
END
fi

expect lut --lut "$lut" --strength 60
gives lumvane_lut "$lut" 0.6
[ "$host" = melt ] && gives lumvane_lut "$lut" 0.6 threads=2
expect clarity --intensity 70 --saturation 20
gives lumvane_clarity 0.7 0.6
expect whitebalance --temperature 0.5 --tint -0.25
gives lumvane_whitebalance 0.75 0.375
[ "$host" = melt ] && gives lumvane_whitebalance 0.75 0.375 threads=2

exit $failed
