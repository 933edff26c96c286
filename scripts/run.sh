#!/usr/bin/env bash
# Builds and starts a phone in a sandbox, with its applications: run.sh [--phone NAME] [--headless] [--refresh-pictures]
# With a display it shows the phone in a window, and ends it when that is closed. Without one, or with --headless, it
# plays a short scripted session, saves pictures of it, and ends; the exit status tells whether everything happened as
# it should. --phone NAME is another phone with settings of its own, in build/phones/NAME (its session plays in
# build/sessions/NAME); any number may run at once. A NAME has letters, digits, "_", "-" and ".", and not "-" or "."
# first.
# --refresh-pictures copies the session's pictures of the README into docs/pictures, to be committed.
. "$(dirname "$0")/common.sh"

headless=false refresh=false name=
[ -n "${DISPLAY:-}" ] || headless=true
usage() { echo "run.sh: $* (see run.sh --help)" >&2; exit 2; }
while [ $# -gt 0 ]; do
  case $1 in
    --phone)
      name=${2:-}
      [[ $name =~ ^[A-Za-z0-9_][A-Za-z0-9_.-]*$ ]] ||
        usage '--phone needs a name of letters, digits, "_", "-" and ".", and not "-" or "." first'
      shift
      ;;
    --headless) headless=true ;;
    --refresh-pictures) headless=true refresh=true ;;
    -h | --help) sed -n '2,/^[^#]/s/^# //p' "$0"; exit 0 ;;
    *) usage "unknown option $1" ;;
  esac
  shift
done

ensure_packages "${build_packages[@]}" "${phone_packages[@]}"
build release phone

# The phone of the desktop keeps its settings here; the session plays on a phone that nobody used before.
phone=$project/build/phone
[ -z "$name" ] || phone=$project/build/phones/$name
! $headless || phone=$project/build/session${name:+s/$name}
# One phone a folder: its settings must not have two writers.
mkdir -p "$phone"
exec 8> "$phone/lock"
flock -n 8 || die "a phone is already running in $phone: stop it first"
trap 'rm -f "$phone/info.json"' EXIT
! $headless || rm -rf "$phone/setup" "$phone/pictures"
mkdir -p "$phone/setup" "$phone/pictures"
echo "$project/build/release/bin" > "$phone/path"
# What the programs of the phone, and those typed into it, find in their environment.
share=$project/build/release/share/tyxappbase
environment=("TYX_RES_FONT_PATH=$project/appbase/look/fonts" "TYX_RES_STRING_PATH=$project/build/release/strings"
  "TYX_RES_ICON_PATH=$share/icons" "TYX_RES_SKIN_FILE=$share/skins/light.skn" "TYX_INSTALLED_QT_PATH=$share")
printf '%s\n' "${environment[@]}" > "$phone/environment"

start() { # SCRIPT: runs it inside, where its folders are
  PATH="$project/build/release/bin:$PATH" "$project/scripts/sandbox" --rw "$phone" --setup "$phone/setup" \
    "${environment[@]/#/--env=}" --sounds "$share/soundfile" --info-fd 7 -- \
    "$project/scripts/$1" "$phone/pictures" ${name:+"$name"} 7> "$phone/info.json" 8>&-
}

if ! $headless; then
  say "starting the phone: close its window to stop it, tap its status bar to see the next application"
  pictures=$phone/pictures # the phone has a /tmp of its own
  inside="scripts/in-phone${name:+ --phone $name}"
  echo "try: $inside tyx bus send TYX/Application/hello greet"
  echo "another window of the same phone: $inside tyx phone --folder ${pictures@Q}${name:+ --name $name}"
  start phone-desktop
  exit
fi

say "playing the session"
start phone-session
echo "pictures: $phone/pictures"
if $refresh; then
  mkdir -p "$project/docs/pictures"
  cp "$phone"/pictures/{keyboard,keypad-words,notes,12-dark}.png "$project/docs/pictures/"
  echo "copied into docs/pictures: look at them, then commit"
fi
