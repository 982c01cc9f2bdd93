#!/bin/sh
# A project that includes this one by add_subdirectory installs nothing of it, and its fast arithmetic does not reach it:
#   subdirectory.sh SOURCE_FOLDER
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cat >"$folder/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(Parent LANGUAGES C CXX)
add_compile_options(-ffast-math)
add_subdirectory($1 lumvane)
END
cmake -G Ninja -S "$folder" -B "$folder/build" -DCMAKE_CXX_FLAGS="-Ofast -ffast-math" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
DESTDIR=$folder/stage cmake --install "$folder/build"
[ ! -e "$folder/stage" ] || { find "$folder/stage"; exit 1; }
commands=$(grep '"command"' "$folder/build/compile_commands.json")
echo "$commands" | grep -q -- '-ffast-math'
! echo "$commands" | grep -v -- '-fno-fast-math -ffp-contract=off' | grep . || exit 1
! echo "$commands" | grep -- '-fno-fast-math.* -ffast-math' || exit 1
# The linker adds no start-up code that changes the floating-point mode of the process.
flags=$(sed -n 's/^ *LINK_FLAGS = //p' "$folder/build/build.ninja")
# shellcheck disable=SC2086  # a list of words
c++ -Ofast -ffast-math $flags -shared -fPIC -x c++ /dev/null -o "$folder/probe.so"
! nm "$folder/probe.so" | grep set_fast_math || exit 1

cmake -S "$folder" -B "$folder/build" -DLUMVANE_INSTALL=ON
grep -q lumvane.h "$folder/build/lumvane/cmake_install.cmake"
