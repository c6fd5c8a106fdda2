#!/usr/bin/env bash
# Tries the .deb on a machine that has nothing but Debian 12: what it depends on is enough, the application installed by
# it does its work, and nothing of it stays when it is purged. Needs root and debootstrap. The root in FOLDER/base is
# made once and never changed; a run's own changes lie over it.
#
#   tests/system/deb_test.sh FOLDER [PACKAGE]
set -euo pipefail

[ $# -ge 1 ] || { sed -n '2,6s/^# \{0,1\}//p' "$0"; exit 2; }
repository=$(cd "$(dirname "$0")/../.." && pwd)
# shellcheck source=tests/system/machine.sh
. "$repository/tests/system/machine.sh"
mkdir -p "$1"
folder=$(realpath "$1")
package=${2:-$(find "$repository/build/package" -maxdepth 1 -name 'fernwick_*.deb')}
[ -f "$package" ] || { echo "error: no package; run script/package first" >&2; exit 1; }

install_debian "$folder/base" ca-certificates
run=$(mktemp -d "$folder/run.XXXXXX")
trap 'rm -rf "$run"' EXIT
mkdir -p "$run/upper/var/tmp" "$run/work" "$run/machine"
chmod 1777 "$run/upper/var/tmp"
lend_network "$run/upper"
# The laboratory that drives the application is no part of the package; it comes from the repository.
mkdir -p "$run/upper/root/fernwick"
(cd "$repository" && cp -r --parents -t "$run/upper/root/fernwick" script/demo tests/system tests/package)
cp "$package" "$run/upper/root/fernwick.deb"

say "Trying $(basename "$package") in it"
export run folder
# shellcheck disable=SC2016 # the inner shell expands it
unshare --mount --pid --fork --kill-child --propagation private -- bash -c '
  set -e
  machine=$run/machine
  mount -t overlay -o "lowerdir=$folder/base,upperdir=$run/upper,workdir=$run/work" overlay "$machine"
  mount -t proc proc "$machine/proc"
  mount -t sysfs -o ro sysfs "$machine/sys"
  mount --rbind /dev "$machine/dev"
  mount -t tmpfs -o mode=755 tmpfs "$machine/run"
  mount -t tmpfs -o mode=1777 tmpfs "$machine/tmp"
  exec chroot "$machine" env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
    HOME=/root USER=root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
    ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} \
    bash /root/fernwick/tests/package/on_the_machine.sh /root/fernwick.deb
'
say "All of it worked"
