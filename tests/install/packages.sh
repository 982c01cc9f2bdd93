#!/bin/sh
# The Debian packages hold what they should, ask for what they need, and work together: packages.sh FOLDER
set -eu
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT

# asks PACKAGE WORD...: the package's needs name each word
asks() {
  package=$1
  shift
  needs=$(dpkg-deb --field "$folder"/"$package"_*.deb Depends)
  for word in "$@"; do
    case $needs in
      *"$word"*) ;;
      *) echo "$package does not ask for $word: $needs"; exit 1 ;;
    esac
  done
}

folder=$1
version=$(dpkg-deb --field "$folder"/liblumvane-dev_*.deb Version)
asks liblumvane0 libopencv-core libopencv-imgproc libhwy libc6
asks liblumvane-dev "liblumvane0 (= $version)"
asks lumvane-host "liblumvane0 (= $version)" libopencv-imgcodecs
asks frei0r-plugins-lumvane "liblumvane0 (= $version)"
for package in "$folder"/*.deb; do
  dpkg-deb --extract "$package" "$root"
done
library=$(dirname "$(find "$root/usr/lib" -name 'liblumvane.so.0')")
for file in liblumvane.so cmake/Lumvane/LumvaneConfig.cmake pkgconfig/lumvane.pc; do
  [ -e "$library/$file" ] || { echo "no $file in $library"; exit 1; }
done
[ -e "$root/usr/include/lumvane.h" ]
[ -e "$root/usr/lib/frei0r-1/lumvane_lut.so" ]
cd "$root"
LD_LIBRARY_PATH=$library usr/bin/lumvane-host scene scene.png
[ -s scene.png ]
