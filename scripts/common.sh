# Sourced by the scripts that a person or CI starts: where the project is, and the Debian packages it needs.
set -euo pipefail
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
jobs=$(nproc)

say() { printf '\n== %s\n' "$*"; }
die() { echo "${0##*/}: $*" >&2; exit 3; }

# What configuring and building needs.
build_packages=(cmake ninja-build python3 g++ pkg-config extra-cmake-modules libcli11-dev libexpected-dev
  qt6-base-dev qt6-base-private-dev qt6-wayland-dev qt6-wayland-dev-tools libwayland-dev
  qt6-declarative-dev libqt6opengl6-dev libgl-dev libegl-dev qt6-l10n-tools python3-cairo
  libasound2-dev libsndfile1-dev libmarisa-dev
  wamerican wngerman wfrench hunspell-ru hunspell-tools fortunes fortunes-de fortunes-ru manpages-fr)
# What a phone needs at run time; linguist-qt6 is the ready-made program that runs on it beside our own.
phone_packages=(bubblewrap util-linux qt6-wayland qt6-qpa-plugins xkb-data fonts-dejavu-core fontconfig linguist-qt6
  libasound2 libasound2-data libsndfile1 libmarisa0)
test_packages=(strace python3 xvfb xauth mandoc)
check_packages=(clang-16 clang-tidy-16 clang-format-16 libclang-rt-16-dev git python3)
# What builds for the handset's processor and emulates it, and the armel packages for it beside the -dev ones above.
target_packages=(g++-arm-linux-gnueabi binutils-arm-linux-gnueabi qemu-user debian-archive-keyring)
sysroot_packages=(libc6-dev libstdc++-12-dev qt6-wayland qt6-qpa-plugins xkb-data fonts-dejavu-core libasound2-data)
# What makes Debian packages, and tries them on a clean Debian.
package_packages=(debhelper dpkg-dev mmdebstrap git)
# The peers that the benchmarks run beside us.
bench_packages=(libbenchmark-dev libglib2.0-dev libkf5config-dev libsystemd-dev dbus libts-dev)

# ensure_packages NAME...: installs what is missing, and says so; quick when nothing is.
ensure_packages() {
  local missing
  missing=$(comm -23 <(printf '%s\n' "$@" | sort -u) \
    <(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null | sed -n 's/^installed //p' | sort -u))
  [ -n "$missing" ] || return 0
  local root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "these Debian packages are missing, and there is no sudo to install them:" $missing
    root=(sudo)
  fi
  say "installing Debian packages:" $missing
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
  # shellcheck disable=SC2086 # one word a package
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -qq -y --no-install-recommends $missing >/dev/null
}

# build PRESET [TARGET...]: configures once, then builds what changed.
build() {
  local preset=$1
  shift
  say "building ($preset)"
  cd "$project"
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >"/dev/null"
  cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"} | tail -n 1
}
