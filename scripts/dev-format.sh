# format [--check]: every C and C++ source as .clang-format has it.
main() {
  local options=(-i)
  [ "${1:-}" = --check ] && options=(--dry-run --Werror)
  ensure_packages scripts/packages-lint.txt
  git ls-files '*.h' '*.c' '*.cpp' | xargs clang-format "${options[@]}"
}
