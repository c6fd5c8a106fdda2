#!/usr/bin/env bash
# Tries the promises of the README on a machine that has nothing but Debian 12 and git: clones HEAD into a fresh root
# and runs the demo and all tests there. Needs root and debootstrap; the root in FOLDER is kept and used again.
#
#   tests/system/fresh_machine.sh FOLDER [COMMAND ...]
set -euo pipefail

[ $# -ge 1 ] || { sed -n '2,5s/^# \{0,1\}//p' "$0"; exit 2; }
# shellcheck source=tests/system/machine.sh
. "$(dirname "$0")/machine.sh"
repository=$(git -C "$(dirname "$0")" rev-parse --show-toplevel)
mkdir -p "$1"
machine=$(realpath "$1")
shift
[ $# -gt 0 ] || set -- bash -c 'time script/run --demo --once && time script/test'

install_debian "$machine" git,ca-certificates

say "Cloning $(git -C "$repository" log -1 --format='%h %s')"
rm -rf "$machine/root/fernwick"
git clone --quiet "file://$repository" "$machine/root/fernwick"

lend_network "$machine"

say "Running in it: $*"
export machine
# shellcheck disable=SC2016 # the inner shell expands it
exec unshare --mount --pid --fork --kill-child --propagation private -- bash -c '
  set -e
  mount --bind "$machine" "$machine" # the root of a machine is a mount point
  mount -t proc proc "$machine/proc"
  mount -t sysfs -o ro sysfs "$machine/sys"
  mount --rbind /dev "$machine/dev"
  mount -t tmpfs -o mode=755 tmpfs "$machine/run"
  mount -t tmpfs -o mode=1777 tmpfs "$machine/tmp"
  exec chroot "$machine" env -i PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
    HOME=/root USER=root LC_ALL=C.UTF-8 TERM="${TERM:-dumb}" \
    NODE_EXTRA_CA_CERTS=/etc/ssl/certs/ca-certificates.crt \
    ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} \
    sh -c '\''cd /root/fernwick && exec "$@"'\'' sh "$@"
' bash "$@"
