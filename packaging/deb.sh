#!/usr/bin/env bash
# Packs the .deb from a finished build: packaging/deb.sh BUILD WORK ARCHIVE VERSION SECONDS. WORK is a folder that is
# made anew. The same build gives the same bytes: dpkg-deb sorts, takes root for the owner, and the one time for all.
set -euo pipefail
source=$(cd "$(dirname "$0")" && pwd)
build=$(realpath "$1") archive=$(realpath "$3") version=$4
export SOURCE_DATE_EPOCH=$5 LC_ALL=C TZ=UTC0
umask 022
rm -rf "$2" && mkdir -p "$2/debian" "$2/root/DEBIAN"
cd "$2"

cmake --install "$build" --component application --prefix root/opt/fernwick --strip >/dev/null
cmake --install "$build" --component system --prefix root/usr >/dev/null
mkdir -p root/usr/bin root/usr/share/doc/fernwick root/usr/share/lintian/overrides
ln -s /opt/fernwick/Fernwick.app/Fernwick root/usr/bin/fernwick
gzip -9n root/usr/share/man/man1/fernwick.1

doc=root/usr/share/doc/fernwick
{ cat "$source/deb/copyright" && sed '1,/^Copyright/d; /^$/s/.*/./; s/^/ /' "$source/../LICENSE" | sed '1d'; } >"$doc/copyright"
maintainer=$(sed -n 's/^Maintainer: //p' "$source/deb/control.in")
printf 'fernwick (%s) unstable; urgency=medium\n\n  * What changed: /opt/fernwick/Fernwick.app/share/doc/CHANGELOG.md\n\n -- %s  %s\n' \
  "$version" "$maintainer" "$(date -R -d "@$SOURCE_DATE_EPOCH")" | gzip -9n >"$doc/changelog.gz"
install -m 644 "$source/deb/lintian-overrides" root/usr/share/lintian/overrides/fernwick
install -m 755 "$source/deb/postrm" root/DEBIAN/postrm

# Which packages hold the libraries that ours are linked with. The tool wants to see a source package.
printf 'Source: fernwick\nMaintainer: %s\n\nPackage: fernwick\nArchitecture: any\n' "$maintainer" >debian/control
libraries=$(dpkg-shlibdeps -O root/opt/fernwick/Fernwick.app/Fernwick root/opt/fernwick/Fernwick.app/*.so)
# In KiB as Debian's own tools count (deb-substvars(5), "Installed-Size"), whatever the file system here takes.
size=$(find root -path root/DEBIAN -prune -o -printf '%y %s\n' | awk '{ sum += $1 == "f" ? int(($2 + 1023) / 1024) : 1 } END { print sum }')
sed -e "s/@version@/$version/; s/@architecture@/$(dpkg --print-architecture)/" \
  -e "s/@size@/$size/" \
  -e "s/@libraries@/${libraries#shlibs:Depends=}/" "$source/deb/control.in" >root/DEBIAN/control
(cd root && find opt usr -type f -print0 | sort -z | xargs -0 md5sum) >root/DEBIAN/md5sums

find root -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +
dpkg-deb --root-owner-group -Zxz --threads-max=1 --build root "$archive" >/dev/null
