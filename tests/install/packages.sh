#!/bin/sh
# The Debian packages contain the right files, have the right dependencies, and work together:
#   packages.sh FOLDER [COMMAND_THAT_RUNS_PROGRAMS...]
set -eu
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT

folder=$1
shift
version=$(dpkg-deb --field "$folder"/liblumvane-dev_*.deb Version)
for need in 'liblumvane0 libopencv-core' 'liblumvane0 libc6' \
  "liblumvane-dev liblumvane0 (= $version)" "lumvane-host liblumvane0 (= $version)" \
  'lumvane-host libopencv-imgcodecs' "frei0r-plugins-lumvane liblumvane0 (= $version)" \
  "python3-lumvane liblumvane0 (= $version)" 'python3-lumvane python3-numpy'; do
  dpkg-deb --field "$folder/${need%% *}"_*.deb Depends | grep -qF "${need#* }" || { echo "not required: $need"; exit 1; }
done
for package in "$folder"/*.deb; do
  dpkg-deb --extract "$package" "$root"
done
library=$(dirname "$(find "$root/usr/lib" -name 'liblumvane.so.0')")
for file in liblumvane.so cmake/Lumvane/LumvaneConfig.cmake pkgconfig/lumvane.pc; do
  [ -e "$library/$file" ] || { echo "no $file in $library"; exit 1; }
done
[ -e "$root/usr/include/lumvane.h" ]
[ -e "$root/usr/lib/frei0r-1/lumvane_lut.so" ]
[ -e "$root/usr/share/kdenlive/effects/frei0r_lumvane_lut.xml" ]
[ -e "$root/usr/share/shotcut/qml/filters/lumvane/meta_lut.qml" ]
# Packages for ARM64 lack the GStreamer element.
for package in "$folder"/gstreamer1.0-lumvane_*.deb; do
  [ -e "$package" ] || continue
  dpkg-deb --field "$package" Depends | grep -F "liblumvane0 (= $version)" | grep -q libgstreamer-plugins-base1.0-0
  [ -e "$library/gstreamer-1.0/libgstlumvane.so" ]
done
[ -e "$root/usr/lib/python3/dist-packages/lumvane/farm.py" ]
for file in liblumvane-dev/docs/embedding.md liblumvane-dev/examples/host.c lumvane-host/examples/silver.cube \
  python3-lumvane/examples/grade.py frei0r-plugins-lumvane/plugins.md; do
  [ -s "$root/usr/share/doc/$file" ] || { echo "no $file"; exit 1; }
done
! command -v lintian >/dev/null || lintian --allow-root --fail-on error,warning "$folder"/*.deb
cd "$root"
gzip -cd usr/share/man/man1/lumvane-host.1.gz | grep -q '^.SS lumvane.*hdr '
LD_LIBRARY_PATH=$library "$@" usr/bin/lumvane-host scene scene.png
[ -s scene.png ]
if [ $# -eq 0 ]; then
  LD_LIBRARY_PATH=$library bash -c '. usr/share/bash-completion/completions/lumvane-host
    COMP_WORDS=(usr/bin/lumvane-host hdr --transfer p) COMP_CWORD=3
    _lumvane_host "${COMP_WORDS[0]}"; [ "${COMPREPLY[*]}" = pq ]'
fi
