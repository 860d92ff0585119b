# test [--preset P] [--vm] [--faults] [--on SYSTEM] [--all] [FILTER]: everything, or the tests whose names match FILTER.
# --all is what a change must pass: every preset that checks, kernel devices and other systems included.
main() {
  local presets=(release) vm='' all='' systems=() system preset options=()
  while [ $# -gt 0 ]; do
    case $1 in
      --preset) presets=("${2:?--preset needs a name}"); shift ;;
      --vm) vm=yes ;;
      --all) presets=(release asan tsan) all=yes vm=yes systems=(arm64 trixie-units) ;;
      --on)
        presets=() systems=("${2:?--on needs a system: arm64, bookworm or trixie}")
        shift
        ;;
      --faults)
        export TOBRIN_FAULT_ROUNDS=50
        options+=(--verbose -R EndToEndFaults)
        ;;
      -*) die "test: unknown option $1" ;;
      *) options+=(-R "$1") ;;
    esac
    shift
  done
  ensure_packages scripts/packages.txt
  [ -z "$vm" ] || ensure_packages scripts/packages-vm.txt
  for preset in "${presets[@]}"; do
    [ ${#presets[@]} -eq 1 ] || say "preset $preset"
    build_preset "$preset"
    run_tests "$preset" "$vm" "${options[@]}"
    vm=''  # the machine measures; sanitizers would only slow it down
  done
  [ -z "$all" ] || test_assertions
  for system in "${systems[@]}"; do
    say "on $system"
    test_on "$system" "${options[@]}"
  done
}

# test_assertions: the unit tests and a life of typing with every assertion on.
test_assertions() {
  say "preset debug"
  build_preset debug
  # Not by the preset, whose own choice of labels would count alone.
  ctest --test-dir build/debug --output-on-failure --parallel "$(nproc)" --label-exclude '^(vm|desktop)$'
  ctest --test-dir build/debug --output-on-failure --tests-regex '^EndToEndTyping$'
}

# test_on SYSTEM [CTEST_OPTION...]: arm64 is built here and emulated; a Debian is bootstrapped from nothing, where
# SUITE-units leaves out what needs a desktop, and packages.
test_on() {
  local system=$1 part='' status=0
  shift
  case $system in
    arm64)
      dpkg --print-foreign-architectures | grep -qx arm64 || as_root dpkg --add-architecture arm64
      ensure_packages scripts/packages-arm64.txt
      build_preset arm64
      ctest --preset arm64 --parallel "$(nproc)" "$@" || status=$?
      # Some development files are there for one kind of machine at a time.
      ensure_packages scripts/packages.txt
      return "$status"
      ;;
    bookworm | trixie | bookworm-units | trixie-units)
      ensure_packages scripts/packages-debian.txt
      [ "$system" = "${system%-units}" ] || part=units
      as_root scripts/test-on-debian "${system%-units}" $part
      ;;
    *) die "test: no system '$system'; there are arm64, bookworm and trixie" ;;
  esac
}

# leak_check_died PRESET: whether every test that failed did so because the leak sanitizer, which stops all threads to
# look at them, met one that was ending and crashed. That is no finding.
leak_check_died() {
  local logs=build/$1/Testing/Temporary died
  died=$(grep -c "LeakSanitizer has encountered a fatal error" "$logs/LastTest.log") || return
  [ "$died" -ge "$(wc -l <"$logs/LastTestsFailed.log")" ]
}

# run_tests PRESET VM [CTEST_OPTION...]: the preset itself leaves the virtual machine's tests out.
run_tests() {
  local preset=$1 vm=$2 summary=build/$1/vm-summary.txt status=0
  shift 2
  if [ -z "$vm" ]; then
    ctest --preset "$preset" --parallel "$(nproc)" "$@" || status=$?
    if [ "$status" -ne 0 ] && leak_check_died "$preset"; then
      say "the leak check itself has died; once more what it ended"
      ctest --preset "$preset" --rerun-failed || return
      status=0
    fi
    return "$status"
  fi
  rm -f "$summary"
  ctest --test-dir "build/$preset" --output-on-failure --parallel "$(nproc)" "$@" || status=$?
  [ ! -f "$summary" ] || cat "$summary"
  return "$status"
}
