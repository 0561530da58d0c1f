# shellcheck shell=bash
# Sourced by ./accept on a Mac, whose own bash is 3.2; and by a test elsewhere, with made-up tools and folders.
#
#   accept_on_a_mac WORD…   looks, builds, plays, clears up
#
# Before anything is made, a line in the journal tells of it; the player keeps the same journal. A run that was cut off
# leaves it behind, and the next one clears first.

label=studio.pell.tamo.core
applications=/Applications
home=$HOME
journal=$PWD/build/accept.journal
parts=$PWD/build/macos-accept/bin
lsregister=/System/Library/Frameworks/CoreServices.framework/Frameworks/LaunchServices.framework/Support/lsregister
# What a copy of the sample has, and a data directory that was made here.
sample_mark=Contents/Resources/acceptance-sample
data_mark=.made-by-acceptance
companion="Contents/Library/LoginItems/Tamo Core.app"
source scripts/accept_clearing.sh

job() { echo "gui/$(id -u)/$label"; }
data_directory() { echo "$home/Library/Application Support/Tamo"; }
container() { echo "$home/Library/Containers/studio.pell.Tamo"; }

# What is missing, as one line; nothing when all is there. The words are those of the command line.
missing_here() {
  missing_tools || missing_session || missing_identity || missing_application || missing_space || missing_right "$@" || true
}

missing_tools() {
  local version
  version=$(sw_vers -productVersion)
  if ((${version%%.*} < 13)); then echo "macOS 13 or later is needed; this is $version"
  elif ! xcode-select -p >/dev/null 2>&1; then echo "Xcode's command line tools are missing: xcode-select --install"
  elif ! command -v cmake >/dev/null; then echo "cmake is missing: brew install cmake ninja"
  elif ! command -v ninja >/dev/null; then echo "ninja is missing: brew install cmake ninja"
  else return 1; fi
}

missing_session() {
  launchctl print "gui/$(id -u)" >/dev/null 2>&1 && return 1
  echo "there is no login session: log in at the screen, and start this in a terminal there"
}

missing_identity() {
  [[ ${IDENTITY:--} == - ]] && return 1
  security find-identity -v -p codesigning | grep -qF -- "$IDENTITY" && return 1
  echo "there is no identity \"$IDENTITY\" to sign with; security find-identity -v -p codesigning lists them"
}

missing_application() {
  [[ ${TAMO_APP:-} ]] || return 1
  if [[ -e $TAMO_APP/Contents/Info.plist && -x "$TAMO_APP/$companion/Contents/MacOS/Tamo Core" ]]; then return 1; fi
  echo "TAMO_APP is no Tamo.app with a companion in it: $TAMO_APP"
}

missing_space() {
  local folder free
  for folder in "$PWD" "$applications" "$home"; do
    free=$(df -Pk "$folder" | awk 'NR == 2 { print $4 }')
    ((free >= 1000000)) && continue
    echo "less than 1000 MB are free on the disk of $folder"
    return 0
  done
  return 1
}

# Without the right to /Applications there are just the two checks that are about it.
missing_right() {
  local word other=
  [[ -w $applications ]] && return 1
  for word in "$@"; do
    case "$word" in --with-me) ;; move-administrator | move-cancelled) other=${other:-no} ;; *) other=yes ;; esac
  done
  [[ $other == no ]] && return 1
  echo "this user may not write to $applications; ./accept --with-me move-administrator move-cancelled is all that can be played"
}

# What could be harmed, as one line; nothing when nothing can.
harmed_here() {
  if [[ -e $applications/Tamo.app && ! -e $applications/Tamo.app/$sample_mark ]]; then
    echo "$applications/Tamo.app is no sample; put it away first, and back afterwards"
  elif [[ -e $(data_directory) && ! -e $(data_directory)/$data_mark ]]; then
    echo "$(data_directory) was not made by this command; put it away first, and back afterwards"
  elif [[ -e $(container) ]]; then
    echo "$(container) was not made by this command; put it away first, and back afterwards"
  elif launchctl print "$(job)" >/dev/null 2>&1; then
    echo "an agent $label is registered already; unregister it first"
  elif pgrep -x Tamo >/dev/null || pgrep -x 'Tamo Core' >/dev/null; then
    echo "Tamo is running; quit it first"
  fi
}

build_parts() {
  echo "Building, for a few minutes"
  build macos-accept || return 1
  # No URL is to reach the copy in the build folder.
  "$lsregister" -u "$parts/Tamo Core.app" >/dev/null 2>&1 || true
}

play_parts() {
  ACCEPT_PARTS=$parts ACCEPT_JOURNAL=$journal "$parts/accept-on-this-mac" "$@"
}

# The status of the run, or 1 when something of it is left.
end_run() {
  local status=$?
  trap - EXIT INT TERM HUP
  clear_up || status=1
  exit "$status"
}

accept_on_a_mac() {
  local line
  if [[ -e $journal ]]; then
    echo "A run before this one was cut off; clearing what it left"
    clear_up || return 1
  fi
  line=$(missing_here "$@")
  [[ $line ]] || line=$(harmed_here)
  if [[ $line ]]; then
    echo "accept: $line" >&2
    return 2
  fi
  build_parts || return 2
  trap end_run EXIT
  trap 'exit 129' HUP
  trap 'exit 130' INT
  trap 'exit 143' TERM
  play_parts "$@"
}
