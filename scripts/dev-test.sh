# test [--preset P] [FILTER]: everything, or the tests whose names match FILTER.
main() {
  local preset=release filter=()
  while [ $# -gt 0 ]; do
    case $1 in
      --preset) preset=${2:?--preset needs a name}; shift ;;
      -*) die "test: unknown option $1" ;;
      *) filter=(-R "$1") ;;
    esac
    shift
  done
  ensure_packages scripts/packages.txt
  build_preset "$preset"
  ctest --preset "$preset" --parallel "$(nproc)" "${filter[@]}"
}
