#!/bin/sh
# A host outside the tree builds against the installed files and runs: hosts.sh cmake|pkg-config BUILD SAMPLES
set -eu
way=$1
build=$2
samples=$3
sources=$(realpath "$(dirname "$0")")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
pkg_config=$(command -v pkg-config || command -v pkgconf || true)
if [ "$way" = pkg-config ] && [ -z "$pkg_config" ]; then
  echo "skipped: pkg-config is not installed"
  exit 77
fi

# Staged and then moved, like packages: installed files must not contain the first path.
DESTDIR=$folder/stage cmake --install "$build" --prefix /first/place >"$folder/log"
mv "$folder/stage/first/place" "$folder/installed"
library=$(dirname "$(find "$folder/installed" -name 'liblumvane.so')")

if [ "$way" = cmake ]; then
  # A host must not need to find the library's dependencies.
  cmake -G Ninja -S "$sources" -B "$folder/hosts" -DCMAKE_PREFIX_PATH="$folder/installed" \
    -DCMAKE_DISABLE_FIND_PACKAGE_OpenCV=ON -DCMAKE_DISABLE_FIND_PACKAGE_hwy=ON
  cmake --build "$folder/hosts"
else
  export PKG_CONFIG_PATH="$library/pkgconfig" LD_LIBRARY_PATH="$library"
  mkdir "$folder/hosts"
  # shellcheck disable=SC2046  # a list of words
  cc -std=c11 -Wall -Wextra -Werror "$sources/../c_host.c" -o "$folder/hosts/c_host" $("$pkg_config" --cflags --libs lumvane)
  "$pkg_config" --modversion lumvane | grep -q '^[0-9.]*$'
fi
"$folder/hosts/c_host" "$samples/silver.cube"

# The program finds the library by itself.
[ ! -e "$folder/installed/bin/lumvane-host" ] || env -u LD_LIBRARY_PATH "$folder/installed/bin/lumvane-host" --help >/dev/null
