# run [ARGS]: the program in this desktop; where there is none, in a private one, typed at and recorded.
main() {
  local program=(tobrin TobrinTray TobrinPanel TobrinStarterPacks tobrin-key-access)
  ensure_packages scripts/packages.txt
  if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    build_preset release --target "${program[@]}"
    exec build/release/tobrin "$@"
  fi
  build_preset release --target "${program[@]}" press-keys record-sink find-onsets
  export TOBRIN_DESKTOP_TOOLS=$PWD/build/release/desktop-tools PYTHONDONTWRITEBYTECODE=1
  case ${1:-} in
    --*)
      say "no desktop here: in a private one"
      exec Tools/Desktop/desktop-session -- build/release/tobrin "$@"
      ;;
  esac
  say "no desktop here: typing in a private one"
  exec Tools/Desktop/desktop-session -- scripts/demo build/release/tobrin build/release/Resources/Packs \
    tobrin-demo.wav "$@"
}
