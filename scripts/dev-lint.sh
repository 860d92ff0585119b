# lint [FILTER]: static analysis of the sources (those whose paths hold FILTER), and of the panel.
main() {
  local filter=${1:-}
  ensure_packages scripts/packages.txt
  ensure_packages scripts/packages-lint.txt
  build_preset release >/dev/null
  say "clang-tidy"
  git ls-files 'Sources/*.cpp' | grep -F -- "$filter" |
    xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p build/release
  say "cppcheck"
  # constStatement takes uint64_t{x} and lambdas with attributes for statements without effect;
  # useInitializationList wants values there that other members decide.
  cppcheck --quiet --error-exitcode=1 --std=c++20 --enable=warning,performance,portability \
    --inline-suppr --suppress=missingIncludeSystem --suppress=unknownMacro \
    --suppress=constStatement --suppress=useInitializationList \
    -I Sources/TobrinMixer/include -I Sources/TobrinKit -I Sources/TobrinLinux -I Sources/Tobrin \
    Sources
  say "qmllint"
  cmake --build --preset release --target TobrinPanel_qmllint
}
