# bash completion for tobrin-force
_tobrin_force() {
  local word=${COMP_WORDS[COMP_CWORD]} words='record replay --version --help'
  COMPREPLY=()
  case ${COMP_WORDS[COMP_CWORD - 1]} in
    --seconds | --sensitivity) return ;;
  esac
  if [ "$COMP_CWORD" -gt 1 ]; then
    case ${COMP_WORDS[1]} in
      record) words='--seconds --help' ;;
      replay) words='--sensitivity --json --help' ;;
      *) return ;;
    esac
    if [[ $word != -* ]]; then
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      return
    fi
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _tobrin_force tobrin-force
