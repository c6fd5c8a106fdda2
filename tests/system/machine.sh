# shellcheck shell=bash
# What the tests on a fresh machine share: a root with nothing but Debian 12 in it, and where its packages come from.
# Sourced by them.

say() { printf '\033[1m==> %s\033[0m\n' "$*"; }

# install_debian FOLDER PACKAGES: once; PACKAGES are added to the smallest system, with commas between them.
install_debian() {
  [ "$(id -u)" -eq 0 ] || { echo "error: root is needed to make another root" >&2; exit 1; }
  [ ! -e "$1/etc/fresh-machine" ] || return 0
  say "Installing Debian 12 into $1"
  debootstrap --variant=minbase --include="$2" bookworm "$1" >"$1.log" 2>&1 || { tail -n 20 "$1.log" >&2; exit 1; }
  touch "$1/etc/fresh-machine"
}

# lend_network FOLDER: packages come from where this machine gets its own: its sources, its proxy, its name server, whom
# it trusts. No package starts a service.
lend_network() {
  mkdir -p "$1/etc/apt" "$1/etc/ssl/certs" "$1/usr/sbin"
  cp -L /etc/ssl/certs/ca-certificates.crt "$1/etc/ssl/certs/ca-certificates.crt"
  : >"$1/etc/apt/sources.list" # in the place of the one that debootstrap wrote
  local name
  for name in sources.list sources.list.d apt.conf.d; do
    [ ! -e "/etc/apt/$name" ] || cp -rL --no-preserve=ownership "/etc/apt/$name" "$1/etc/apt/"
  done
  cp -L /etc/resolv.conf "$1/etc/resolv.conf"
  echo '127.0.0.1 localhost' >"$1/etc/hosts"
  printf '#!/bin/sh\nexit 101\n' >"$1/usr/sbin/policy-rc.d"
  chmod +x "$1/usr/sbin/policy-rc.d"
}
