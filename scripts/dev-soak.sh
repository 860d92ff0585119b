# soak [MINUTES]: ten times human speed in a private desktop; six minutes are an hour's typing.
main() {
  local minutes=${1:-6}
  [[ $minutes =~ ^[0-9.]+$ ]] || die "soak: '$minutes' is no number of minutes"
  ensure_packages scripts/packages.txt
  build_preset release --target tobrin TobrinTray TobrinPanel TobrinStarterPacks press-keys
  export TOBRIN_DESKTOP_TOOLS=$PWD/build/release/desktop-tools PYTHONDONTWRITEBYTECODE=1
  exec Tools/Desktop/desktop-session -- Tools/Desktop/soak "$PWD/build/release/tobrin" \
    "$PWD/build/release/Resources/Packs" "$minutes"
}
