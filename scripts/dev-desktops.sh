# desktops: the program in sway with waybar and with XFCE's panel; pictures and a table of what worked.
main() {
  ensure_packages scripts/packages.txt
  ensure_packages scripts/packages-desktops.txt
  build_preset release --target tobrin TobrinTray TobrinPanel TobrinStarterPacks press-keys record-sink
  local pictures=$PWD/build/desktops ordinary=() desktop status=0
  mkdir -p "$pictures"
  # sway does not run as root.
  if [ "$(id -u)" = 0 ]; then
    chmod 1777 "$pictures"
    ordinary=(setpriv --reuid=65534 --regid=65534 --clear-groups)
  fi
  export TOBRIN_DESKTOP_TOOLS=$PWD/build/release/desktop-tools PYTHONDONTWRITEBYTECODE=1
  for desktop in sway xfce; do
    "${ordinary[@]}" Tools/Desktop/desktop-session --screen 1280x1000x24 -- Tools/Desktops/try-desktop "$desktop" \
      build/release/tobrin build/release/Resources/Packs "$pictures" 2>"$pictures/$desktop.log" || status=1
  done
  say "pictures and what the desktops said: build/desktops"
  return $status
}
