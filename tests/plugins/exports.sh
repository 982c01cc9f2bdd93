#!/bin/sh
# The plug-ins export the functions that hosts look up, and no names that could clash: exports.sh PLUGIN...
expected='construct deinit destruct get_param_info get_param_value get_plugin_info init set_param_value update '
for plugin in "$@"; do
  found=$(nm -D --defined-only "$plugin" | awk '{ sub("f0r_", "", $3); print $3 }' | sort | tr '\n' ' ')
  [ "$found" = "$expected" ] || { echo "$plugin exports $found, not $expected"; exit 1; }
done
