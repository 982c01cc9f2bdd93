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
cmake -G Ninja -S "$folder" -B "$folder/build" -DCMAKE_CXX_FLAGS=-ffast-math -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
DESTDIR=$folder/stage cmake --install "$folder/build"
[ ! -e "$folder/stage" ] || { find "$folder/stage"; exit 1; }
commands=$(grep '"command"' "$folder/build/compile_commands.json")
echo "$commands" | grep -q -- '-ffast-math'
! echo "$commands" | grep -v -- '-fno-fast-math -ffp-contract=off' | grep . || exit 1
! echo "$commands" | grep -- '-fno-fast-math.* -ffast-math' || exit 1
grep -q 'LINK_FLAGS = .*-fno-fast-math' "$folder/build/build.ninja"
