# lint: format and static analysis of all C++ and C (of the tests by cppcheck alone), of panel and scripts; goes on
# past findings and fails in the end. lint FILTER: clang-tidy alone, on the files whose paths hold FILTER. A second
# run goes on where the first stopped. lint --changed [BASE]: clang-tidy on the sources that differ from BASE (main's last commit
# before yours: origin/main), as a change must pass it.
main() {
  local filter=${1:-} failed=()
  if [ "$filter" = --changed ]; then
    check_changed "${2:-origin/main}"
    return
  fi
  ensure_packages scripts/packages.txt
  ensure_packages scripts/packages-lint.txt
  check_sources "$filter" || failed+=(clang-tidy)
  if [ -z "$filter" ]; then
    check_rooms || failed+=(rooms)
    check_names || failed+=(names)
    check_format || failed+=(clang-format)
    check_flow || failed+=(cppcheck)
    check_panel || failed+=(qmllint)
    check_scripts || failed+=(scripts)
  fi
  [ ${#failed[@]} -eq 0 ] || die "findings of: ${failed[*]}"
  say "no findings"
}

# The lint preset runs clang-tidy with every compilation, so that the build knows what is done, and how
# many at once. Other checks, or another clang-tidy, make other commands: then it does all again.
check_sources() {
  local filter=$1 version objects
  say "clang-tidy"
  version=$({
    clang-tidy --version
    git ls-files -z '*.clang-tidy' scripts/tidy | xargs -0 cat
  } | sha1sum)
  cmake --preset lint -DCMAKE_{C,CXX}_CLANG_TIDY="$PWD/scripts/tidy;${version:0:12}" >/dev/null || return
  # The project's own files, not what is generated from them; nor tests, whose library's macros take the time. An
  # object is in its target's folder, under its source's name.
  mapfile -t objects < <(ninja -C build/lint -t targets all |
    sed -n 's/: C\(XX\)\?_COMPILER__.*//p' | grep '\.c\(pp\)\?\.o$' | grep -Ev '^Tests/|_autogen/|_qmltyper|/\.rcc/' |
    FILTER=$filter awk '{ path = $0; sub(/CMakeFiles\/[^\/]*\.dir\//, "", path) } index(path, ENVIRON["FILTER"])')
  [ ${#objects[@]} -gt 0 ] || die "no source's path holds '$filter'"
  ninja -C build/lint -k 0 "${objects[@]}"
}

# check_changed BASE
check_changed() {
  local file found=''
  ensure_packages scripts/packages.txt
  ensure_packages scripts/packages-lint.txt
  for file in $(git diff --name-only --diff-filter=d "$1" -- 'Sources/*.cpp' 'Tools/*.cpp' 'Benchmarks/*.cpp' 'Fuzz/*.cpp'); do
    check_sources "${file%.cpp}" || found=yes
  done
  check_rooms || found=yes
  check_format || found=yes
  [ -z "$found" ] || die "findings in what has changed"
  say "no findings in what has changed"
}

# Arrows between the kit's rooms, and what they may include.
check_rooms() {
  say "rooms"
  cmake -D FOLDER="$PWD/Sources" -P cmake/CheckKitIncludes.cmake
}

# The linker takes two types of one name for one type, and drops one of them: code that meant it is
# then wrong.
check_names() {
  say "one name, one type"
  cmake --preset names >/dev/null && cmake --build --preset names --target tobrin tobrin-packs tobrin-force TobrinPanel TobrinTray
}

check_format() {
  say "clang-format"
  git ls-files -z '*.h' '*.c' '*.cpp' | xargs -0 clang-format --dry-run --Werror
}

check_flow() {
  say "cppcheck"
  # Qt's macros only for sources that include Qt: one of them, "forever", is a name elsewhere.
  flow_of Sources/Tobrin{Mixer,Kit,Linux,Packs,Force,KeyAccess,Keys} Tests/{Devices,RealTime} Tests/Tobrin?* \
    Tools Benchmarks Fuzz || return
  flow_of --library=qt '-DQML_NAMED_ELEMENT(name)=' Sources/Tobrin Tests/Tobrin
}

# In the mixer's vectors, useInitializationList asks for values that are only known after later
# members.
flow_of() {
  cppcheck --quiet -j "$(nproc)" --error-exitcode=1 --std=c++20 --enable=warning,performance,portability \
    --library=googletest --inline-suppr --suppress='useInitializationList:Sources/TobrinMixer/*-inl.h' \
    '-DElfW(type)=Elf64_##type' -DMADV_HUGEPAGE=14 -DHWY_ATTR= \
    -I Sources/TobrinMixer/include -I Sources/TobrinKit -I Sources/TobrinLinux -I Sources/TobrinPacks \
    -I Sources/Tobrin -I Tools "$@"
}

check_panel() {
  say "qmllint"
  cmake --build --preset lint --target TobrinPanel_qmllint
}

check_scripts() {
  say "shellcheck, pyflakes"
  local sourced=(scripts/*.sh) shell python
  mapfile -t shell < <(git grep -lE '^#!.*[/ ](ba)?sh$' -- ':!scripts/*.sh')
  mapfile -t python < <(git grep -lE '^#!.*python3$' && git ls-files '*.py')
  shellcheck --shell=bash "${sourced[@]}" && shellcheck -x "${shell[@]}" && pyflakes3 "${python[@]}"
}
