#!/bin/sh
# The plug-ins export what hosts look up, and nothing that could get in the way of another library: exports.sh PLUGIN...
expected='f0r_construct
f0r_deinit
f0r_destruct
f0r_get_param_info
f0r_get_param_value
f0r_get_plugin_info
f0r_init
f0r_set_param_value
f0r_update'
for plugin in "$@"; do
  found=$(nm -D --defined-only "$plugin" | awk '{ print $3 }' | sort)
  if [ "$found" != "$expected" ]; then
    printf '%s, expected:\n%s\nfound:\n%s\n' "$plugin" "$expected" "$found"
    exit 1
  fi
done
