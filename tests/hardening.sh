#!/bin/sh
# Shipped binaries are built with hardening against exploits: hardening.sh LIBRARY_OR_PROGRAM...
set -eu
for file; do
  dump=$(readelf -dlW "$file"; nm -D "$file")
  for word in GNU_RELRO BIND_NOW 'GNU_STACK .* RW ' __stack_chk_fail; do
    echo "$dump" | grep -q "$word" || { echo "$file has no $word"; exit 1; }
  done
  objdump -d "$file" | grep -q endbr64
done
