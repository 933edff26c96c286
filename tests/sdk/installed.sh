# Sourced by the tests of what is installed: installs the build tree into a folder of the sandbox, away from where it
# was configured for. Called with the arguments of the test: BUILD-TREE LIBDIR COMPILER [FLAG...]
set -euo pipefail
prefix=/tmp/prefix
compiler=("${@:3}")
die() { echo "${0##*/}: $*" >&2; exit 1; }

cmake --install "$1" --prefix "$prefix" --strip >/tmp/install.log || die "cmake --install failed"
export PKG_CONFIG_PATH=$prefix/$2/pkgconfig
read -ra compile_flags < <(pkg-config --cflags tyxappbase)
read -ra link_flags < <(pkg-config --libs tyxappbase)
