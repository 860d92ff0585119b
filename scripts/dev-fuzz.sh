# fuzz [SECONDS] [NAME]: runs each fuzzer (or those whose names hold NAME) for that long on its seeds.
# What it finds new is kept in build/fuzz/Corpus; an input that fails is left in build/fuzz/Failed.
main() {
  local seconds=${1:-60} filter=${2:-} program name corpus failed=0
  [[ $seconds =~ ^[0-9]+$ ]] || die "fuzz: '$seconds' is no number of seconds"
  ensure_packages scripts/packages.txt
  ensure_packages scripts/packages-fuzz.txt
  build_preset fuzz --target TobrinFuzzers
  while read -r program; do
    name=$(basename "$program")
    corpus=build/fuzz/Corpus/$name
    mkdir -p "$corpus" build/fuzz/Failed
    say "$name for $seconds s"
    local folders=("$corpus")
    [ -d "Fuzz/Seeds/$name" ] && folders+=("Fuzz/Seeds/$name")
    "$program" -max_total_time="$seconds" -print_final_stats=1 -verbosity=0 \
      -artifact_prefix="build/fuzz/Failed/$name-" "${folders[@]}" || failed=1
  done < <(find build/fuzz/Fuzz -type f -executable -name "*$filter*Fuzzer" | sort)
  [ "$failed" = 0 ] || die "fuzz: failures are in build/fuzz/Failed"
}
