# test [--preset P] [--vm] [--faults] [--all] [FILTER]: everything, or the tests whose names match FILTER.
# --all is what a change must pass: every preset that checks, kernel devices included.
main() {
  local presets=(release) vm='' preset options=()
  while [ $# -gt 0 ]; do
    case $1 in
      --preset) presets=("${2:?--preset needs a name}"); shift ;;
      --vm) vm=yes ;;
      --all) presets=(release asan tsan) vm=yes ;;
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
