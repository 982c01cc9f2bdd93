#!/bin/sh
# The plug-ins export what hosts look up, and nothing that could clash with another library: exports.sh PLUGIN...
expected='construct deinit destruct get_param_info get_param_value get_plugin_info init set_param_value update '
for plugin in "$@"; do
  found=$(nm -D --defined-only "$plugin" | awk '{ sub("f0r_", "", $3); print $3 }' | sort | tr '\n' ' ')
  [ "$found" = "$expected" ] || { echo "$plugin exports $found, not $expected"; exit 1; }
done
