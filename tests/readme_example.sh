#!/bin/sh
# The example in the README compiles as C and as C++: readme_example.sh README.md INCLUDE_FOLDER
set -eu
example=$(sed -n '/^```c$/,/^```$/p' "$1" | grep -v '^```')
[ -n "$example" ]
echo "$example" | cc -std=c11 -Wall -Wextra -Werror -I "$2" -fsyntax-only -x c -
echo "$example" | c++ -std=c++17 -Wall -Wextra -Werror -I "$2" -fsyntax-only -x c++ -
