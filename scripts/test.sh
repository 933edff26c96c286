#!/usr/bin/env bash
# Builds everything and runs all tests, each on a phone of its own: test.sh [PRESET] [CTEST-OPTION...]
# PRESET is release (the default: what is shipped, and what run.sh starts), dev, asan or coverage.
. "$(dirname "$0")/common.sh"
preset=release
case ${1:-} in
  dev | asan | release | coverage) preset=$1; shift ;;
  -h | --help) sed -n '2,3s/^# //p' "$0"; exit 0 ;;
esac
ensure_packages "${build_packages[@]}" "${phone_packages[@]}" "${test_packages[@]}"
build "$preset"
say "testing ($preset)"
ctest --preset "$preset" -j "$jobs" "$@"
