# A freshly bootstrapped Debian in a folder, entered with mounts and processes that end with the script; sourced by
# scripts that need one, after common.sh, in name spaces made for them. They set `root`, its folder.
# shellcheck disable=SC2154

# The archive that this machine itself installs from.
mirror() {
  # shellcheck disable=SC2016 # for apt to fill in
  apt-get indextargets --format '$(CREATED_BY) $(CODENAME) $(REPO_URI)' |
    sed -n -e '/-security/d' -e '/-updates/d' -e 's/^Packages [a-z]* //p' | sort -u | sed 1q
}

inside() {
  chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 HOME=/root \
    DEBIAN_FRONTEND=noninteractive "$@"
}

# inside_as USER COMMAND...
inside_as() {
  local user=$1
  shift
  inside setpriv --reuid "$user" --regid "$user" --init-groups env HOME="/home/$user" USER="$user" "$@"
}

# logged COMMAND...: shows what it said only where it fails.
logged() {
  "$@" >>"$root/log" 2>&1 && return
  tail -n 30 "$root/log" >&2
  die "$1 failed"
}

apt_quietly() {
  logged inside apt-get -qq -y -o Dpkg::Use-Pty=0 -o APT::Install-Recommends=false "$@"
}

# bootstrap SUITE: into $root.
bootstrap() {
  local suite=$1 from
  from=$(mirror)
  [ -n "$from" ] || die "apt knows no archive of Debian's"
  say "bootstrapping Debian's $suite"
  logged debootstrap --variant=minbase "$suite" "$root" "$from" || logged debootstrap --variant=minbase "$suite" "$root" "$from"
  apt-config dump Acquire >"$root/etc/apt/apt.conf.d/90acquire"
  mount_kernel
  printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
  chmod 755 "$root/usr/sbin/policy-rc.d"
}

mount_kernel() {
  mount -t proc proc "$root/proc"
  mount -t tmpfs tmpfs "$root/dev/shm"
  mount --bind /dev/pts "$root/dev/pts"
}
