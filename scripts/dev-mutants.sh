# mutants PATH... [--changes N] [--seed S] [--verbose]: whether the unit tests notice small faults, put one at a time
# into a copy of the sources. The checkout itself is only read.
main() {
  local preset=release copy
  [ $# -gt 0 ] || set -- --help
  ensure_packages scripts/packages.txt
  copy=$(mktemp -d)
  # shellcheck disable=SC2064  # the folder of now
  trap "rm -rf '$copy'" EXIT
  git ls-files -z --cached --others --exclude-standard |
    tar -c --null --ignore-failed-read -T - | tar -x -C "$copy"
  cd "$copy" || return
  export CCACHE_BASEDIR=$copy PYTHONDONTWRITEBYTECODE=1
  cmake --preset $preset >/dev/null
  Tools/Mutants/mutants --build build/$preset "$@"
}
