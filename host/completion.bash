# Completion for bash: subcommands, options and their choices, parsed from --help; otherwise file names.
_lumvane_host() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} text subcommands given candidates=
  text=$("$1" --help 2>/dev/null) || return
  subcommands=$(sed -n '/^Subcommands:/,/^$/s/^  \([a-z][^ ]*\).*/\1/p' <<<"$text")
  for given in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    if grep -qxF -e "$given" <<<"$subcommands"; then
      text=$("$1" "$given" --help 2>/dev/null)
      subcommands=
      break
    fi
  done
  [[ ! $before =~ ^--[a-z0-9-]+$ ]] || candidates=$(sed -n "s/^  $before [A-Z]*:{\([^}]*\)}.*/\1/p" <<<"$text" | tr , ' ')
  if [ -z "$candidates" ]; then
    case $word in
      -*) candidates=$(sed -n 's/^  \(-.,\)\{0,1\}\(--[^ ]*\).*/\2/p' <<<"$text") ;;
      *) candidates=$subcommands ;;
    esac
  fi
  mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$word")
}
complete -o default -F _lumvane_host lumvane-host
