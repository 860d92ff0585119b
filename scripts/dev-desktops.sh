# desktops [NAME...]: the program in desktops and with sound servers that others wrote, each in a fresh Debian;
# pictures and a table of what worked.
main() {
  local desktops=("$@") desktop status=0 pictures=$PWD/build/desktops package
  [ $# -gt 0 ] || desktops=(xfce i3 sway gnome plasma pulseaudio screen-sharing jack)
  ensure_packages scripts/packages.txt
  ensure_packages scripts/packages-debian.txt
  build_preset release --target press-keys record-sink
  make_package
  mkdir -p "$pictures"
  chmod 1777 "$pictures"
  for desktop in "${desktops[@]}"; do
    as_root Tools/Desktops/in-fresh-root "$desktop" "$package" build/release/desktop-tools "$pictures" \
      2>"$pictures/$desktop.log" | tee "$pictures/$desktop.md" || status=1
  done
  Tools/Desktops/side-by-side "$pictures" xfce i3 sway gnome plasma
  Tools/Desktops/side-by-side "$pictures" pulseaudio screen-sharing jack
  say "pictures and what the desktops said: build/desktops"
  return $status
}
