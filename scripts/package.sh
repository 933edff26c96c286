#!/usr/bin/env bash
# Builds the Debian packages into build/package, from a clean copy of the files that git tracks: package.sh
# The tests are left out, which scripts/test.sh runs; DEB_BUILD_OPTIONS= runs them too.
. "$(dirname "$0")/common.sh"
case ${1:-} in '') ;; -h | --help) sed -n '2,3s/^# //p' "$0"; exit 0 ;; *) die "unknown option $1" ;; esac
export DEB_BUILD_OPTIONS=${DEB_BUILD_OPTIONS-nocheck}
ensure_packages "${build_packages[@]}" "${package_packages[@]}"
if [[ " $DEB_BUILD_OPTIONS " == *" nocheck "* ]]; then
  export DEB_BUILD_PROFILES="${DEB_BUILD_PROFILES:-} nocheck" # what only tests need may be missing
else
  ensure_packages "${phone_packages[@]}" "${test_packages[@]}"
fi

place=$project/build/package
version=$(dpkg-parsechangelog -l "$project/debian/changelog" -S Version)
[ "$version" = "$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' "$project/CMakeLists.txt")" ] ||
  die "debian/changelog says version $version, CMakeLists.txt another"
rm -rf "$place"
mkdir -p "$place/tyxappbase-$version"
cd "$project"
git ls-files -z | tar --null --no-recursion --files-from=- --create | tar --extract --directory="$place/tyxappbase-$version"

say "building the packages (log: build/package/log)"
cd "$place/tyxappbase-$version"
# The helpers of Debian give the build a home of its own; a compiler cache is to last.
export CCACHE_DIR=${CCACHE_DIR:-$HOME/.cache/ccache}
dpkg-buildpackage --build=binary --unsigned-changes --unsigned-buildinfo >../log 2>&1 ||
  { tail -n 30 ../log >&2; die "building failed"; }

say "built"
cd "$place"
for package in *.deb; do
  printf '%-28s %8d kB   %s\n' "${package%%_*}" "$(($(stat -c %s "$package") / 1024))" \
    "$(dpkg-deb --field "$package" Depends)"
done
