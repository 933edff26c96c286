#!/usr/bin/env bash
# Tries at length what phones must survive, each in a sandbox: soak.sh [OPTION...] [TRIAL...]
#   TRIAL         kill, full, flood, contention; all of them when none is named
#   --minutes N   how long all trials take together, about; 10 by default
#   --smoke       a short form of all trials, under a minute; does not touch the report
#   --seed N      the random numbers of an earlier run; by default new ones, which are printed
#   --no-build    uses build/release as it is
# All trials at full length write their figures to docs/soak.md. Exit status 1: a check failed; build/soak keeps the logs.
. "$(dirname "$0")/common.sh"

minutes=10 smoke=false building=true seed=$((RANDOM * 32768 + RANDOM)) trials=()
while [ $# -gt 0 ]; do
  case $1 in
    --minutes) minutes=${2:?}; shift 2 ;;
    --smoke) smoke=true; shift ;;
    --seed) seed=${2:?}; shift 2 ;;
    --no-build) building=false; shift ;;
    kill | full | flood | contention) trials+=("$1"); shift ;;
    -h | --help) sed -n '2,8s/^# //p' "$0"; exit 0 ;;
    *) echo "soak.sh: unknown word $1 (see soak.sh --help)" >&2; exit 2 ;;
  esac
done
[[ $minutes =~ ^[0-9]+(\.[0-9]+)?$ && $seed =~ ^[0-9]+$ ]] || { echo "soak.sh: N is a number" >&2; exit 2; }
report=true
if $smoke || [ ${#trials[@]} -gt 0 ]; then report=false; fi
[ ${#trials[@]} -gt 0 ] || trials=(kill full flood contention)

# libfaketime makes the wall clock of a phone jump.
ensure_packages "${phone_packages[@]}" python3 faketime
if $building; then
  ensure_packages "${build_packages[@]}"
  build release phone settingswriter
fi

seconds_of() { # TRIAL: of ten minutes, what it takes; a trial ends the round that it is in
  local share
  case $1 in kill) share=180 ;; full) share=110 ;; flood) share=120 ;; contention) share=160 ;; esac
  if $smoke; then echo 5; else awk "BEGIN { print $share * $minutes / 10 }"; fi
}

share=$project/build/release/share/tyxappbase
environment=("TYX_RES_STRING_PATH=$project/build/release/strings" "TYX_RES_ICON_PATH=$share/icons"
  "TYX_RES_SKIN_FILE=$share/skins/light.skn" "TYX_INSTALLED_QT_PATH=$share" PYTHONDONTWRITEBYTECODE=1)
logs=$project/build/soak
rm -rf "$logs"
failed=()
on_phone() { # FOLDER PROGRAM OPTION...: the trial on a phone with those options of the sandbox
  local out=$logs/$1 program=$2
  mkdir -p "$out"
  shift 2
  PATH="$project/build/release/bin:$project/build/release/tests:$PATH" "$project/scripts/sandbox" --rw "$out" "$@" \
    "${environment[@]/#/--env=}" -- nice /usr/bin/python3 "$project/scripts/soak/$program.py" \
    --seconds "$seconds" --seed "$seed" --out "$out" || failed+=("${out##*/}")
}

echo "seed $seed"
for trial in "${trials[@]}"; do
  seconds=$(seconds_of "$trial")
  say "$trial, $seconds seconds"
  case $trial in
    full)
      on_phone full full --tmp-size 6291456 --setup-size 524288
      on_phone locked locked --setup-locked
      ;;
    *) on_phone "$trial" "$trial" ;;
  esac
done

if $report; then
  /usr/bin/python3 "$project/scripts/soak/report.py" "$logs" "$minutes" "$seed" > "$project/docs/soak.md"
  say "figures: docs/soak.md"
fi
if [ ${#failed[@]} -gt 0 ]; then
  say "failed: ${failed[*]}; with --seed $seed again; logs in build/soak"
  exit 1
fi
say "all trials passed"
