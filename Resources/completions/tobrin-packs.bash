# bash completion for tobrin-packs

# What takes the place of the word after an option: words on standard output, or the status 1 for files.
_tobrin_packs_value() {
  case $1 in
    --format) echo 's16 f32' ;;
    --text | --wpm | --seed | --strength | --tail | --id | --name | --source | --seconds) echo '' ;;
    *) return 1 ;;
  esac
}

_tobrin_packs() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} words files=yes
  COMPREPLY=()
  case $COMP_CWORD:${COMP_WORDS[1]} in
    1:*) words='list check generate loudness render slice record build import export install --version --help' files='' ;;
    *:list) words='--json --help' files='' ;;
    *:check | *:loudness) words='--json --help' ;;
    *:generate) words='--into --mouse --help cream blue-click panda dome typewriter' files='' ;;
    *:render) words='--out --text --text-file --script --wpm --seed --strength --tail --settings --format --help' ;;
    *:slice) words='--options --keys --plot --json --help' ;;
    *:record) words='--into --name --source --seconds --keep --json --help' files='' ;;
    *:build) words='--into --cache --json --help' ;;
    *:import) words='--into --id --name --json --help' ;;
    *:export) words='--out --help' ;;
    *:install) words='--help' ;;
    *) return ;;
  esac
  if [[ $before == --* && $before != --json ]]; then
    files=''
    words=$(_tobrin_packs_value "$before") || files=yes
  fi
  if [ -n "$files" ] && [[ $word != -* ]]; then
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  else
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
  fi
}
complete -F _tobrin_packs tobrin-packs
