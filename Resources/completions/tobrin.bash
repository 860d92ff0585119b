# bash completion for tobrin
_tobrin() {
  local word=${COMP_WORDS[COMP_CWORD]}
  COMPREPLY=()
  [ "$COMP_CWORD" -gt 1 ] && return
  mapfile -t COMPREPLY < <(compgen -W '--probe --selftest --micwatch --snapshot --version --help' -- "$word")
}
complete -F _tobrin tobrin
