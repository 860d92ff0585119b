# package [--test]: the Debian package, into build/package; --test installs it in a fresh system.
main() {
  local test='' package
  case ${1:-} in
    '') ;;
    --test) test=yes ;;
    *) die "package: unknown option $1" ;;
  esac
  ensure_packages scripts/packages.txt
  ensure_packages scripts/packages-package.txt
  make_package
  say "made $package, $(du -k "$package" | cut -f1) KiB"
  # A second sound server would take the card from the one in use.
  if dpkg-deb -f "$package" Depends Recommends | grep -qwE 'pipewire|pulseaudio'; then
    die "the package brings a sound server"
  fi
  check_parts
  say "lintian"
  lintian --allow-root --fail-on error,warning,info --display-info --suppress-tags "$(suppressed_tags)" "$package"
  say "all checks passed"
  [ -z "$test" ] || as_root scripts/package-test "$package" "$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)"
}

# suppressed_tags: what lintian is not to report, each tag followed by a comma; only those its version knows.
suppressed_tags() {
  local tag tags=(
    # The sounds are most of the package, and made by the very programs that it holds.
    arch-dep-package-has-big-usr-share
    # The message bus starts the one service when it is asked for, not an init script and not the start of the system.
    systemd-service-file-missing-install-key
    package-supports-alternative-init-but-no-init.d-script
    # lintian takes instructions for misspelt words: compilers put short texts into them, eight letters at a time.
    spelling-error-in-binary
  )
  for tag in "${tags[@]}"; do
    ! lintian-explain-tags "$tag" >/dev/null 2>&1 || printf '%s,' "$tag"
  done
}

# check_parts: each part of the desktop's and the shell's by the program that knows its kind.
check_parts() {
  local made=build/package/Resources page warnings
  say "desktop entry, description, manual pages, completions"
  desktop-file-validate Resources/desktop/*.desktop
  appstreamcli validate --no-net "$made/app.tobrin.Tobrin.metainfo.xml"
  for page in "$made"/man/*.[18]; do
    warnings=$(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
    [ -z "$warnings" ] || die "$page: $warnings"
  done
  for page in Resources/completions/*.bash; do bash -n "$page"; done
  for page in Resources/completions/*.fish; do fish --no-execute "$page"; done
  zsh -n Resources/completions/_tobrin
}
