#!/usr/bin/env bash
# What tests/system/deb_test.sh does on its fresh machine: on_the_machine.sh PACKAGE. Never run it anywhere else: it
# installs and purges packages.
set -euo pipefail

package=$1
unit=/etc/systemd/system/com.fernwick.mihomo.service
rule=/etc/polkit-1/rules.d/50-com.fernwick.mihomo.rules
# Files that apt, dpkg and the libraries' own scripts keep about their work; they are not the package's. An empty /opt goes
# with the last package in it: so does dpkg with every folder that a package lists.
kept='^/(proc|sys|dev|run|tmp|root|home)(/|$)|^/opt$|^/var/(cache|log|lib/(apt|dpkg|systemd|ucf))(/|$)|^/etc/(ld\.so\.cache|(passwd|group|shadow|gshadow|subuid|subgid)-?|\.pwd\.lock)$'

say() { printf '  %s\n' "$*"; }
fail() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}
everything() { find / -xdev | grep -vE "$kept" | sort; }
install() { apt-get install -y -qq --no-install-recommends "$@" >/tmp/apt.log 2>&1 || { tail -n 20 /tmp/apt.log; fail "apt-get install $*"; }; }
purge() { apt-get purge -y -qq --auto-remove fernwick >/tmp/apt.log 2>&1 || { tail -n 20 /tmp/apt.log; fail "apt-get purge"; }; }

# Runs the application without a display as a user, until it has written its files.
run_as_user() {
  useradd --create-home anna 2>/dev/null
  local home=/home/anna
  setsid setpriv --reuid anna --regid anna --clear-groups env HOME=$home QT_QPA_PLATFORM=offscreen fernwick >/tmp/app.log 2>&1 &
  local started=$!
  for _ in $(seq 100); do
    [ -e $home/.local/share/Fernwick/instance.lock ] && pgrep -x Fernwick >/dev/null && break
    sleep 0.1
  done
  [ -e $home/.local/share/Fernwick/instance.lock ] || { cat /tmp/app.log; fail "the application did not start"; }
  pgrep -x Fernwick >/dev/null || fail "no process is named Fernwick"
  [ "$(readlink "/proc/$(pgrep -x Fernwick)/exe")" = /opt/fernwick/Fernwick.app/Fernwick ] || fail "another program runs"
  kill "$(pgrep -x Fernwick)"
  wait $started || fail "the application ended with $?"
}

check_dependencies() {
  local missing
  missing=$(ldd /opt/fernwick/Fernwick.app/Fernwick /opt/fernwick/Fernwick.app/*.so | grep 'not found' || true)
  [ -z "$missing" ] || fail "libraries are missing: $missing"
  for plugin in /usr/lib/*/qt6/plugins/{platforms/libqxcb,iconengines/libqsvgicon,imageformats/libqsvg,tls/libqopensslbackend}.so; do
    [ -f "$plugin" ] || fail "$plugin is missing"
    ! ldd "$plugin" | grep 'not found' || fail "$plugin lacks a library"
  done
  for program in ssh lsof bsdtar pkill pgrep base64; do
    command -v $program >/dev/null || fail "$program is missing"
  done
  # With no display it says so, in its own words, and not that there is no plug-in.
  local said
  said=$(QT_QPA_PLATFORM=xcb fernwick 2>&1) && fail "it started without a display"
  grep -q "no display could be opened" <<<"$said" || fail "without a display it said: $said"
}

apt-get update -qq
everything >/tmp/before
install "$package"
say "installed with what it depends on: $(grep -c '^Setting up' /tmp/apt.log) packages"
check_dependencies
say "no library, plug-in or program is missing"
run_as_user
say "started by its link, as a user"

mkdir -p "$(dirname $unit)" "$(dirname $rule)"
touch $unit $rule /opt/fernwick/Fernwick.app/of-an-update
chown -R root: /opt/fernwick
touch /opt/fernwick/of-a-person
cp -a /home/anna /tmp/anna
purge
userdel anna
[ -e /opt/fernwick/of-a-person ] || fail "the purge took what is not the package's"
rm -r /opt/fernwick
rmdir --ignore-fail-on-non-empty -p "$(dirname $unit)" "$(dirname $rule)" 2>/dev/null || true
everything >/tmp/after
diff /tmp/before /tmp/after >/tmp/left || { cat /tmp/left; fail "the purge left other files than it found"; }
diff -r --no-dereference /home/anna /tmp/anna || fail "the purge touched the user's files"
say "purged: nothing is left but the user's files, $(find /home/anna -path '*ernwick*' -type f | wc -l) of them Fernwick's"

# The laboratory wants more than the application does.
install "$package" at-spi2-core dbus desktop-file-utils gir1.2-atspi-2.0 gnome-keyring imagemagick iproute2 libglib2.0-bin \
  libsecret-tools openbox openssh-server openssl python3 python3-dbus python3-gi x11-utils xdotool xvfb
cd /root/fernwick
export FERNWICK_PROGRAM=/usr/bin/fernwick FERNWICK_TEST_PICTURES=/tmp/pictures
/usr/bin/python3 -B script/demo/demo.py --once --picture /tmp/demo.png
say "the demonstration ran with the installed program"
# Started by the link, it finds its modules beside the program and writes the program's own place into the entry.
try() { timeout 120 /usr/bin/python3 -B "$@" >/tmp/test.log 2>&1 || { tail -n 30 /tmp/test.log; fail "$*"; }; }
try tests/system/logins_test.py Logins.test_password_logs_in_whatever_is_in_it
try tests/system/login_start_test.py Switch.test_on_writes_a_valid_entry_and_off_removes_it
say "the keyring and the start at login work by the link"
purge
for gone in /opt/fernwick /usr/bin/fernwick; do
  [ ! -e $gone ] && [ ! -L $gone ] && continue
  fail "the second purge left $gone"
done
