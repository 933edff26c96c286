#!/usr/bin/env bash
# Tries the packages of scripts/package.sh on a clean Debian, as root: package-test.sh
# Installs them with apt, uses them, removes and purges them, and looks for what was left behind. MIRROR names the
# mirror of Debian; otherwise it is the one that this machine uses. The clean system is kept in build/package-test.
. "$(dirname "$0")/common.sh"
case ${1:-} in '') ;; -h | --help) sed -n '2,4s/^# //p' "$0"; exit 0 ;; *) die "unknown option $1" ;; esac
[ "$(id -u)" -eq 0 ] || die "installing packages in a root of its own takes root"
ensure_packages mmdebstrap bubblewrap
packages=$project/build/package place=$project/build/package-test
root=$place/root base=$place/base.tar log=$place/log
ls "$packages"/*.deb >/dev/null 2>&1 || die "no packages: build them with scripts/package.sh"
mkdir -p "$place/archives"
: >"$log"

ok() { echo "ok  $*"; }
failed() { tail -n 30 "$log" >&2; die "$*"; }
# in_root COMMAND...: on the clean system, with /proc, /dev and System V objects of its own, and this machine's network.
in_root() {
  bwrap --bind "$root" / --dev /dev --proc /proc --tmpfs /run --unshare-ipc --unshare-pid --die-with-parent \
    --bind "$place/archives" /var/cache/apt/archives --ro-bind /etc/resolv.conf /etc/resolv.conf --cap-add ALL --clearenv --setenv PATH /usr/sbin:/usr/bin:/sbin:/bin \
    --setenv LC_ALL C.UTF-8 --setenv DEBIAN_FRONTEND noninteractive --chdir /tmp -- "$@"
}
apt_get() { in_root apt-get -q -y -o APT::Sandbox::User=root -o Dpkg::Options::=--force-unsafe-io "$@" >>"$log" 2>&1; }

if [ ! -s "$base" ]; then
  say "making a clean Debian (kept)"
  mirror=${MIRROR:-$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' \
    'Codename: bookworm' 'Component: main' | head -n 1)}
  mmdebstrap --format=tar --variant=apt --aptopt='Acquire::Languages "none"' bookworm "$base.new" "${mirror:?}" >>"$log" 2>&1 ||
    failed "mmdebstrap failed"
  mv "$base.new" "$base"
fi
rm -rf "$root"
mkdir -p "$root"
tar --extract --file="$base" --directory="$root" --exclude='./dev/*'

# What there is, but for what apt and dpkg note about themselves, and the copies that adduser makes of its files.
inventory() {
  (cd "$root" && find . -xdev \( -path ./var/cache -o -path ./var/log -o -path ./var/lib/apt -o -path ./var/lib/dpkg \
    -o -path './etc/*-' -o -path ./dev -o -path ./proc -o -path ./run -o -path ./packages \) -prune -o -printf '%p %U\n' | sort)
  sort "$root"/etc/{passwd,group}
}

say "installing on a clean Debian"
mkdir "$root/packages"
cp "$packages"/*.deb "$root/packages/"
dependencies() { dpkg-deb --field "$1" Depends Recommends | sed 's/^[^:]*://'; }
apt_get update || failed "apt-get update failed"
# First only what others bring: so that what is left afterwards is ours.
mapfile -t others < <(for deb in "$packages"/*.deb; do dependencies "$deb"; done | tr ',' '\n' |
  sed 's/[(|].*//; s/ //g' | grep -vE '^$|tyxappbase' | sort -u)
apt_get install --no-install-recommends "${others[@]}" cmake g++ ninja-build || failed "the packages of Debian cannot be installed"
in_root ldconfig
before=$(inventory)
apt_get install --no-install-recommends $(cd "$root" && ls -d packages/*.deb | sed 's#^#/#') || failed "apt cannot install them"
ok "apt installed $(ls "$packages"/*.deb | wc -l) packages from their files"

# What needs a phone happens in one sitting: its objects are gone with the processes.
cat >"$root/packages/try" <<'E'
set -eu
version=$1
[ "$(tyx --version)" = "$version" ] || { echo "tyx --version: $(tyx --version)"; exit 1; }
tyx --help | grep -q doctor
# As the unit does it: its user, its environment, its folders.
install -d -m 0750 -o tyxphone -g tyxphone /run/tyxphone
as_phone() {
  runuser -u tyxphone -- env $(cat /usr/share/tyxappbase/environment) TYX_APP_WRITE_PATH=/var/lib/tyxphone \
    XDG_RUNTIME_DIR=/run/tyxphone HOME=/var/lib/tyxphone "$@"
}
as_phone tyx-guiserver --group tyxphone --platform=offscreen >/packages/server.log 2>&1 &
as_phone tyx bus wait TYX/QtServer --timeout 30
user=$(stat -c %U /tmp/key_testcommand)
[ "$user" = tyxphone ] || { echo "the server runs as $user"; exit 1; }
echo "ok  the server runs as $user"
until as_phone tyx im list | grep -q .; do sleep 0.1; done
echo "ok  input methods: $(as_phone tyx im list | grep -c .)"
as_phone tyx doctor >/packages/doctor.log || { cat /packages/doctor.log; exit 1; }
echo "ok  tyx doctor has nothing to complain of"
cd /var/lib/tyxphone
as_phone tyx new-app my-app >/dev/null
as_phone cmake -S my-app -B my-app/build -G Ninja >/packages/cmake.log && as_phone ninja -C my-app/build >>/packages/cmake.log ||
  { cat /packages/cmake.log; exit 1; }
as_phone my-app/build/my-app >/packages/my-app.log 2>&1 &
as_phone tyx bus wait TYX/Application/my-app --timeout 30
until as_phone tyx screen list | grep -q "New text"; do sleep 0.1; done
echo "ok  a new application was built and shows its window"
as_phone tyx screen shot screen.png
echo "ok  a picture of the screen: $(stat -c %s screen.png) bytes"
cp screen.png /packages/
tyx-sandbox -- sh -c 'tyx-guiserver >/tmp/log & tyx bus wait TYX/QtServer --timeout 30' </dev/null &&
  echo "ok  tyx-sandbox runs a phone of its own beside it"
E
in_root timeout 300 sh /packages/try "$(dpkg-deb --field "$packages"/tyxappbase-tools_*.deb Version)" 2>>"$log" || failed "using them failed"

say "another version of the library"
mkdir -p "$place/other/DEBIAN"
dpkg-deb --field "$packages"/libtyxappbase1_*.deb | sed 's/^Version: .*/Version: 9.9/' >"$place/other/DEBIAN/control"
dpkg-deb --build "$place/other" "$root/packages/other.deb" >>"$log"
in_root apt-get --simulate install /packages/other.deb tyxappbase-tools >"$place/refusal" 2>&1 &&
  failed "apt takes a library of another version beside the tools"
refusal=$(grep -m 1 -oE '^ *tyxappbase-tools : Depends: libtyxappbase1 \(= .*' "$place/refusal") ||
  failed "apt fails for another reason: $(cat "$place/refusal")"
ok "refused:$refusal"

say "removing and purging"
mapfile -t names < <(for deb in "$packages"/*.deb; do dpkg-deb --field "$deb" Package; done)
apt_get remove "${names[@]}" || failed "they cannot be removed"
[ -d "$root/var/lib/tyxphone/setup" ] || failed "removing took the settings away"
ok "removed, and the settings are still there"
# With an object of the phone's user there, which goes too.
in_root sh -c 'runuser -u tyxphone -- ipcmk --shmem 4096 && dpkg --purge "$@" && ! ipcs --shmems | grep tyxphone' \
  sh "${names[@]}" >>"$log" 2>&1 || failed "they cannot be purged"
in_root ldconfig
after=$(inventory)
difference=$(diff <(echo "$before") <(echo "$after")) || failed "left behind or changed: $difference"
ok "purged, and nothing is left"
