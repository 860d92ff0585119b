# bench [NAME] [--json]: every figure next to its goal, or those of the programs whose names hold NAME.
main() {
  local options=() filter='' program
  while [ $# -gt 0 ]; do
    case $1 in
      --json) options+=(--json) ;;
      -*) die "bench: unknown option $1" ;;
      *) filter=$1 ;;
    esac
    shift
  done
  ensure_packages scripts/packages.txt
  build_preset release >&2
  while read -r program; do
    "$program" "${options[@]}"
    [ ${#options[@]} -gt 0 ] || options=(--rows)
  done < <(find build/release -type f -executable -name "tobrin-bench-*$filter*" | sort)
}
