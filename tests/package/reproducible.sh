#!/usr/bin/env bash
# Makes the packages of HEAD a second time, in a clone with another path, from nothing and without ccache, with another
# time zone and another mask for permissions, and compares them byte for byte with those of script/package.
#
#   tests/package/reproducible.sh FOLDER
set -euo pipefail

[ $# -eq 1 ] || { sed -n '2,5s/^# \{0,1\}//p' "$0"; exit 2; }
repository=$(git -C "$(dirname "$0")" rev-parse --show-toplevel)
[ -z "$(git -C "$repository" status --porcelain)" ] || { echo "error: what is not committed is not in a clone" >&2; exit 1; }
mkdir -p "$1"
clone=$(realpath "$1")/quite-another-path/fernwick
rm -rf "$(dirname "$clone")"
mkdir -p "$(dirname "$clone")"

"$repository/script/package" >/dev/null
git clone --quiet "file://$repository" "$clone"
(
  umask 077
  unset CCACHE_BASEDIR CCACHE_NOHASHDIR
  TZ=Pacific/Auckland CCACHE_DISABLE=1 "$clone/script/package" >/dev/null
)
for package in "$repository"/build/package/{Fernwick-*.zip,fernwick_*.deb}; do
  cmp "$package" "$clone/build/package/$(basename "$package")"
  sha256sum "$package"
done
rm -rf "$(dirname "$clone")"
