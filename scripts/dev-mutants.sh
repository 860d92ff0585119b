# mutants PATH... [--changes N] [--seed S] [--jobs N] [--list FILE] [--desktop [NAME]] [--verbose]: whether the tests
# notice small faults, put one at a time into copies of the sources in build/mutants. The checkout itself is only read.
main() {
  [ $# -gt 0 ] || set -- --help
  ensure_packages scripts/packages.txt
  PYTHONDONTWRITEBYTECODE=1 Tools/Mutants/mutants "$@"
}
