#!/usr/bin/env bash
# Builds for the handset's processor and tests on an emulated one: target.sh [STEP [ARGUMENT...]]
# Without a step all of them run, in this order, and docs/target.md gets what came out.
#   build [TARGET...]      installs packages, unpacks the sysroot, configures and builds
#   test [CTEST-OPTION...] runs the tests and prints a table of their results
#   pair                   puts programs of both processors into one phone (and builds those of this machine)
#   measure                prints the size of the library and the memory of an application
. "$(dirname "$0")/common.sh"
built=$project/build/xscale
results=$project/build/target

build_target() {
  ensure_packages "${build_packages[@]}" "${phone_packages[@]}" "${test_packages[@]}" "${target_packages[@]}"
  "$project/scripts/setup-sysroot"
  # Debian 12's own kernel cannot be told of ARM programs for one process tree only.
  "$project/scripts/run-xscale" true 2>/dev/null || ensure_packages qemu-user-binfmt
  build xscale "$@"
}

test_target() {
  local status=0
  mkdir -p "$results"
  say "testing on the emulated processor"
  ctest --preset xscale -j "$jobs" --output-junit "$results/tests.xml" --test-output-size-passed 1000000 \
    --test-output-size-failed 1000000 --quiet "$@" || status=$?
  "$project/scripts/target-results" "$results"
  return $status
}

phone() { # SERVER-BIN APPLICATION-BIN [--memory]
  "$project/scripts/run-xscale" "$project/scripts/sandbox" -- "$project/scripts/target-phone" "$@"
}

pair_target() {
  mkdir -p "$results"
  build release tyx tyx-guiserver tyxwindowserver hello hello_strings
  local native=$project/build/release/bin
  say "the server of this machine, the application emulated"
  phone "$native" "$built/bin" | tee "$results/pair.txt"
  say "the server emulated, the application of this machine"
  phone "$built/bin" "$native" | tee -a "$results/pair.txt"
}

measure_target() {
  local file copies=$results/stripped
  rm -rf "$copies"
  mkdir -p "$copies"
  for file in "$built"/lib/libtyxappbase-xscale-r.so.1 "$built"/lib/tyxappbase/libtyxwindowserver.so \
    "$built"/bin/{tyx-guiserver,tyx-imhost,tyx,hello}; do
    arm-linux-gnueabi-strip -o "$copies/${file##*/}" "$file"
  done
  (cd "$copies" && arm-linux-gnueabi-size -- *) >"$results/sizes.txt"
  say "sizes, stripped" && cat "$results/sizes.txt"
  say "memory of an application, emulated"
  QEMU_GUEST_BASE=0x100000000 phone "$built/bin" "$built/bin" --memory | tee "$results/memory.txt"
}

step=${1:-}
[ $# -eq 0 ] || shift
case $step in
  build | test | pair | measure) "${step}_target" "$@" ;;
  '')
    build_target
    status=0
    test_target || status=$?
    pair_target
    measure_target
    "$project/scripts/target-results" "$results" --write "$project/docs/target.md"
    exit $status ;;
  *) sed -n '2,7s/^# \{0,1\}//p' "$0"; [[ $step == -h || $step == --help ]] || exit 2 ;;
esac
