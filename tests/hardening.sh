#!/bin/sh
# Shipped binaries are built with hardening against exploits: hardening.sh LIBRARY [LIBRARY_OR_PROGRAM...]
set -eu
for file; do
  dump=$(readelf -dlW "$file"; nm -D "$file")
  words='GNU_RELRO BIND_NOW GNU_STACK.*.RW. __stack_chk_fail'
  # The others do not all copy memory and index vectors.
  [ "$file" != "$1" ] || words="$words __memcpy_chk __glibcxx_assert_fail"
  for word in $words; do
    echo "$dump" | grep -q "$word" || { echo "$file has no $word"; exit 1; }
  done
  # The compiler's start-up code alone has a few.
  [ "$(objdump -d "$file" | grep -c endbr64)" -gt 10 ] || { echo "$file is built without -fcf-protection"; exit 1; }
done
# Loading the library runs no code but the compiler's own entry.
readelf -SW "$1" | grep -q '\.init_array .* 000008 08 ' || { echo "$1 has initialisers"; exit 1; }
