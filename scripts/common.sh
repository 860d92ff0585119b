# Shared by the commands of ./dev; sourced at the project's root.

# The compiler cache, where there is one, serves every checkout.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1

say() { printf 'dev: %s\n' "$*"; }
die() {
  printf 'dev: %s\n' "$*" >&2
  exit 1
}

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# wanted_packages FILE: the names a package list holds.
wanted_packages() { sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' "$1"; }

# ensure_packages FILE: installs what is missing of a package list; silent when nothing is.
ensure_packages() {
  local missing=() package kinds
  for package in $(wanted_packages "$1"); do
    # Of this machine's kind where none is named: another's may have taken its place.
    kinds="($(dpkg --print-architecture)|all)"
    [[ $package != *:* ]] || kinds=${package#*:}
    dpkg-query -W -f '${Status} ${Architecture}\n' "$package" 2>/dev/null | grep -Eq "ok installed $kinds$" ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  say "installing: ${missing[*]}"
  as_root apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# make_package: makes the Debian package and leaves its path in `package`.
make_package() {
  # The date that the package carries: the same sources make the same package.
  SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
  export SOURCE_DATE_EPOCH
  rm -f build/package/*.deb
  cmake --preset package >/dev/null
  build_preset package
  (cd build/package && cpack >/dev/null)
  # shellcheck disable=SC2034 # for the caller
  package=$(echo build/package/*.deb)
}

# build_preset PRESET [NINJA_ARGS]: configures where need be and builds.
build_preset() {
  local preset=$1
  shift
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
  # Editors and language servers look for it here.
  ln -sfn "build/$preset/compile_commands.json" compile_commands.json
  cmake --build --preset "$preset" "$@"
}
