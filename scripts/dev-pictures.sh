# pictures: draws the panel, light and dark, at twice its size, for the documentation.
main() {
  ensure_packages scripts/packages.txt
  ensure_packages scripts/packages-pictures.txt
  build_preset release --target tobrin TobrinPanel TobrinStarterPacks
  mkdir -p Docs/Pictures
  local runtime status=0
  runtime=$(mktemp -d)
  export QT_SCALE_FACTOR=2 FONTCONFIG_FILE=$PWD/scripts/pictures-fonts.conf XDG_RUNTIME_DIR=$runtime
  # The packs that come with it, not those of the user who runs this.
  export XDG_DATA_HOME=$runtime
  build/release/tobrin --snapshot Docs/Pictures/panel-light.png pack=cream &&
    build/release/tobrin --snapshot Docs/Pictures/panel-dark.png dark pack=cream &&
    build/release/tobrin --snapshot Docs/Pictures/more-light.png more pack=cream || status=$?
  rm -rf "$runtime"
  [ $status = 0 ] && say "drawn: Docs/Pictures/panel-light.png, panel-dark.png, more-light.png"
  return $status
}
