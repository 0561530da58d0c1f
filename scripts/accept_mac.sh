# shellcheck shell=bash
# Sourced by ./accept on a Mac, whose own bash is 3.2; and by a test elsewhere, with made-up tools and folders.
#
#   accept_on_a_mac WORD…   looks, builds, plays, clears up
#
# The journal begins with the number of the run's process; then a line tells of everything before it is made. The player
# keeps the same journal. A run that was cut off leaves it behind, and the next one clears first.

label=studio.pell.tamo.core
applications=/Applications
home=$HOME
journal=$PWD/build/accept.journal
parts=$PWD/build/macos-accept/bin
# Seconds that a tool has for its part of clearing up.
patience=60
lsregister=/System/Library/Frameworks/CoreServices.framework/Frameworks/LaunchServices.framework/Support/lsregister
# What a copy of the sample has, a data directory that was made here, and, as an attribute, a real Tamo that was put in
# its place here: whose signature another file would break.
sample_mark=Contents/Resources/acceptance-sample
data_mark=.made-by-acceptance
copy_mark=studio.pell.tamo.acceptance
companion="Contents/Library/LoginItems/Tamo Core.app"
source scripts/accept_clearing.sh

job() { echo "gui/$(id -u)/$label"; }
data_directory() { echo "$home/Library/Application Support/Tamo"; }
container() { echo "$home/Library/Containers/studio.pell.Tamo"; }
downloads() { echo "$home/Downloads/Tamo acceptance"; }

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
  [[ $(security find-identity -v -p codesigning) == *"$IDENTITY"* ]] && return 1
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

# The system's log is open to administrators alone. Without one of the two rights there are just the two checks that are
# about such a user.
missing_right() {
  local line
  if [[ ! -w $applications ]]; then line="this user may not write to $applications"
  elif ! log show --last 1s --predicate "subsystem == \"$label\"" >/dev/null 2>&1; then
    line="this user may not read the system's log"
  else return 1; fi
  asks_for_an_administrator "$@" && return 1
  echo "$line; ./accept --with-me move-administrator move-cancelled is all that can be played"
}

# Whether the words name these two checks, or one of them, and no other.
asks_for_an_administrator() {
  local named=no
  while (($#)); do
    case "$1" in
      --with-me) ;;
      --report) (($# > 1)) && shift ;;
      move-administrator | move-cancelled) named=yes ;;
      *) return 1 ;;
    esac
    shift
  done
  [[ $named == yes ]]
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

# In place of the shell that calls it.
play_parts() {
  ACCEPT_PARTS=$parts ACCEPT_JOURNAL=$journal exec "$parts/accept-on-this-mac" "$@"
}

# Beside this shell, which so hears a signal at once, and not only when the player has ended.
play() {
  local status=0
  play_parts "$@" &
  playing=$!
  wait "$playing" || status=$?
  playing=
  return "$status"
}
playing=

end_player() {
  [[ $playing ]] || return 0
  kill "$playing" 2>/dev/null || true
  wait "$playing" 2>/dev/null || true
}

# The status of the run, or 1 when something of it is left. A signal ends the tool that is at work, and clearing up goes
# on with the next one.
end_run() {
  local status=$?
  trap - EXIT
  trap : INT TERM HUP
  end_player
  clear_up || status=1
  exit "$status"
}

# The process of a run that is at work; nothing without one. A number alone may be anybody's by now.
run_at_work() {
  local pid
  pid=$(sed -n 's/^run \([0-9]*\)$/\1/p' "$journal" 2>/dev/null | tail -n 1) || true
  if [[ $pid && $(ps -o command= -p "$pid" 2>/dev/null) == *accept* ]]; then echo "$pid"; fi
}

begin_journal() {
  mkdir -p "${journal%/*}" 2>/dev/null && echo "run $$" 2>/dev/null >"$journal"
}

refuse() {
  echo "accept: $1" >&2
  return 2
}

accept_on_a_mac() {
  local line
  case " $* " in *' --list '*) list_on_a_mac "$@"; return ;; esac
  line=$(run_at_work)
  [[ -z $line ]] || refuse "another ./accept is at work here, as process $line" || return
  if [[ -e $journal ]]; then
    echo "A run before this one was cut off; clearing what it left"
    clear_up || return 1
  fi
  line=$(missing_here "$@")
  [[ $line ]] || line=$(harmed_here)
  [[ -z $line ]] || refuse "$line" || return
  begin_journal || refuse "the journal $journal cannot be written" || return
  trap end_run EXIT
  trap 'exit 129' HUP
  trap 'exit 130' INT
  trap 'exit 143' TERM
  build_parts || return 2
  play "$@"
}

# Names are told on any Mac that can build them.
list_on_a_mac() {
  local line
  if line=$(missing_tools); then refuse "$line" || return; fi
  build_parts >&2 || return 2
  (play_parts "$@")
}
