#!/usr/bin/env bash
# Holds what ./accept does on a Mac before and after it plays to its word: with made-up tools, folders and a player.
#
#   accept_mac_test.sh GROUP PROJECT FOLDER   one of the groups of situations; FOLDER and FOLDER.tools are the test's own
set -uo pipefail
group=$1
project=$2
folder=$3
faults=0

fault() {
  faults=$((faults + 1))
  echo "not so: $*" >&2
}

# tool NAME: a made-up tool, its script on standard input
tool() {
  { echo '#!/usr/bin/env bash'; cat; } >"$folder/bin/$1"
  chmod +x "$folder/bin/$1"
}

# The tools of a Mac on which everything is there and nothing stands in the way.
make_tools() {
  mkdir -p "$folder/bin"
  echo 'echo 14.5' | tool sw_vers
  echo 'exit 0' | tool xcode-select
  echo 'exit 0' | tool cmake
  echo 'exit 0' | tool ninja
  echo 'echo 501' | tool id
  echo 'exit 1' | tool pgrep
  echo "echo pkill \"\$*\" >>'$folder/asked'" | tool pkill
  echo 'exit 0' | tool log
  # An attribute is a file of its name here.
  echo '[[ $1 == -p && -e $3/$2 ]]' | tool xattr
  echo "echo open \"\$*\" >>'$folder/asked'; rm -f '$folder/registered'" | tool open
  # Far more than a pipe holds, for whoever does not read to the end.
  tool security <<<'echo "  1) ABCDEF \"Developer ID Application: Somebody (TEAM000000)\""; seq 20000'
  printf 'echo head\necho "disk 9 9 %s 1%% /"\n' 5000000 | tool df
  tool launchctl <<SH
echo launchctl "\$*" >>'$folder/asked'
case "\$*" in
  'print gui/501') exit 0 ;;
  'print gui/501/studio.pell.tamo.core') [[ -e '$folder/registered' ]] || exit 113 ;;
  bootout*) rm -f '$folder/registered' ;;
esac
SH
}

# Such a Mac. Its tools are made once, for there are many Macs to lay and a tool takes three processes.
lay() {
  [[ -d $folder.tools ]] || { rm -rf "$folder"; make_tools; mv "$folder/bin" "$folder.tools"; }
  rm -rf "$folder"
  mkdir -p "$folder/Applications" "$folder/home/Downloads" "$folder/home/.Trash" "$folder/work"
  cp -R "$folder.tools" "$folder/bin"
}

sample() { mkdir -p "$1/Contents/Resources"; touch "$1/Contents/Resources/acceptance-sample"; }

# Runs words of ./accept in the made-up Mac. `said` and `status` are what came of it. What is played is `player`.
player='true'
# shellcheck disable=SC2120
run() {
  said=$(
    cd "$folder/work" && PATH="$folder/bin:$PATH" HOME="$folder/home" bash -c '
      set -euo pipefail
      cd "$0"; source "$1/scripts/accept_mac.sh"; cd "$2"
      applications=$3/Applications home=$3/home journal=$3/work/build/accept.journal lsregister=true patience=1
      build_parts() { echo built >>"$folder/asked"; }
      play_parts() { eval "$player"; }
      folder=$3 player=$4
      shift 4; accept_on_a_mac "$@"' "$project" "$project" "$folder/work" "$folder" "$player" "$@" 2>&1
  )
  status=$?
}

refuses() { # LINE: nothing was done, and one line says why
  [[ $status == 2 ]] || fault "the status is 2, not $status: $1"
  [[ $said == "accept: $1" ]] || fault "expected \"accept: $1\", but: $said"
  grep -qs built "$folder/asked" && fault "something was built: $1"
  [[ -e $folder/work/build/accept.journal ]] && fault "a journal was begun: $1"
}

missing() { # LINE, the made-up tool on standard input: TOOL
  lay
  tool "$2"
  run
  refuses "$1"
}

prompts() {
  lay
  echo 'exit 64' | tool log
  run "$@"
}

# What a run makes, each thing noted before it is there.
everything='
  note() { echo "$1" >>"$journal"; }
  data="$home/Library/Application Support/Tamo"
  note "path $data"
  note "path $data.making"
  mkdir -p "$data.making"
  touch "$data.making/.made-by-acceptance"
  mv "$data.making" "$data"
  note "path $home/Library/Containers/studio.pell.Tamo"
  mkdir -p "$home/Library/Containers/studio.pell.Tamo/Data"
  note "path $home/Downloads/Tamo acceptance"
  mkdir -p "$home/Downloads/Tamo acceptance/Tamo.app"
  note "path $folder/T/studio.pell.tamo.core.job.lock"
  mkdir -p "$folder/T"
  touch "$folder/T/studio.pell.tamo.core.job.lock"
  note "path $folder/T/tamo-acceptance-sample"
  mkdir -p "$folder/T/tamo-acceptance-sample/Tamo.app"
  note "path $folder/Shared/tamo-acceptance"
  mkdir -p "$folder/Shared"
  touch "$folder/Shared/tamo-acceptance"
  note trash
  mkdir -p "$home/.Trash/Tamo 2.app/Contents/Resources"; touch "$home/.Trash/Tamo 2.app/Contents/Resources/acceptance-sample"
  app="$applications/Tamo.app"
  note "path $app"
  note "path $app.making"
  mkdir -p "$app.making/Contents/Resources"
  touch "$app.making/Contents/Resources/acceptance-sample"
  mv "$app.making" "$app"
  note registered
  touch "$folder/registered"'

nothing_left() {
  local item
  for item in Applications/Tamo.app Applications/Tamo.app.making "home/Library/Application Support/Tamo.making" "home/Downloads/Tamo acceptance" "home/Library/Application Support/Tamo" \
    T/studio.pell.tamo.core.job.lock T/tamo-acceptance-sample Shared/tamo-acceptance "home/.Trash/Tamo 2.app" home/Library/Containers/studio.pell.Tamo registered work/build/accept.journal; do
    [[ -e $folder/$item ]] && fault "$1: $item is left"
  done
}

refusals() {
  lay; run
  [[ $status == 0 ]] || fault "a Mac where all is there is played on: $said"
  grep -q pkill "$folder/asked" && fault "where nothing was made nobody is ended"

  missing "macOS 13 or later is needed; this is 12.7.6" sw_vers <<<'echo 12.7.6'
  missing "Xcode's command line tools are missing: xcode-select --install" xcode-select <<<'exit 2'
  missing "there is no login session: log in at the screen, and start this in a terminal there" launchctl <<<'exit 125'
  missing "less than 1000 MB are free on the disk of $folder/work" df <<<'echo head; echo "disk 9 9 999999 99% /"'
  missing "this user may not read the system's log; ./accept --with-me move-administrator move-cancelled is all that can be played" \
    log <<<'echo "log: Could not open local log store: Operation not permitted"; exit 64'
  missing "Tamo is running; quit it first" pgrep <<<'[[ $2 == Tamo ]]'
  missing "Tamo is running; quit it first" pgrep <<<'[[ $2 == "Tamo Core" ]]'

  lay; IDENTITY='Developer ID Application: Nobody' run
  refuses 'there is no identity "Developer ID Application: Nobody" to sign with; security find-identity -v -p codesigning lists them'
  lay; IDENTITY='Developer ID Application: Somebody (TEAM000000)' run
  [[ $status == 0 ]] || fault "an identity that is there signs: $said"

  lay; TAMO_APP=$folder/home run
  refuses "TAMO_APP is no Tamo.app with a companion in it: $folder/home"

  lay; mkdir -p "$folder/Applications/Tamo.app/Contents"; run
  refuses "$folder/Applications/Tamo.app is no sample; put it away first, and back afterwards"
  lay; mkdir -p "$folder/home/Library/Application Support/Tamo"; run
  refuses "$folder/home/Library/Application Support/Tamo was not made by this command; put it away first, and back afterwards"
  lay; mkdir -p "$folder/home/Library/Containers/studio.pell.Tamo"; run
  refuses "$folder/home/Library/Containers/studio.pell.Tamo was not made by this command; put it away first, and back afterwards"
  lay; touch "$folder/registered"; run
  refuses "an agent studio.pell.tamo.core is registered already; unregister it first"

  # What is there on a Mac that could be harmed is no reason not to name the checks.
  lay; mkdir -p "$folder/Applications/Tamo.app"; player='echo listed' run --list
  [[ $status == 0 && $said == listed ]] || fault "the checks are named on any Mac: $status $said"

  # A user who may not read the log, or not write to /Applications, which only the words tell apart here: root may write
  # everywhere.
  prompts --with-me --report lock move-administrator move-cancelled
  [[ $status == 0 ]] || fault "the two checks of such a user are played: $said"
  for words in '--with-me' '--with-me move-administrator register' '--with-me --report move-cancelled'; do
    # shellcheck disable=SC2086
    prompts $words
    [[ $status == 2 ]] || fault "no other check goes with them: $words"
  done
  said=$(bash -c 'cd "$0"; source scripts/accept_mac.sh; applications=/nowhere; missing_right' "$project")
  [[ $said == *"may not write to /nowhere"* ]] || fault "a user without the right is told: $said"

  # A journal that cannot be kept: nothing is made.
  lay; touch "$folder/work/build"; run
  refuses "the journal $folder/work/build/accept.journal cannot be written"

  # What is told of the command is told from anywhere, and is not its text.
  said=$(cd / && "$project/accept" --help)
  status=$?
  [[ $status == 2 && $said == *'./accept --list'* && $said != *$'\n'set* ]] || fault "the help is told: $status $said"
}

# What a run makes is taken away, whatever its status.
runs() {
  lay; player=$everything run
  [[ $status == 0 ]] || fault "a run that held ends with 0: $status $said"
  nothing_left "after a run"
  grep -q 'open .*--core-action unregister' "$folder/asked" || fault "the companion unregisters what it registered"
  for copy in Applications "home/Downloads/Tamo acceptance"; do
    grep -qF "pkill -KILL -f ^$(sed 's/\./\\./g' <<<"$folder/$copy/Tamo.app")/Contents/" "$folder/asked" ||
      fault "the programs of the copy are ended: $copy"
  done
  lay; player="$everything; return 1" run
  [[ $status == 1 ]] || fault "a run that did not hold ends with 1: $status"
  nothing_left "after a run that failed"

  # A tool that hangs does not keep the rest from being taken away.
  lay; echo "echo \$\$ >'$folder/hangs'; exec sleep 300" | tool open; player=$everything run
  [[ $status == 0 ]] || fault "launchd takes the agent away where the companion hangs: $status $said"
  nothing_left "after a companion that hangs"
  kill -0 "$(<"$folder/hangs")" 2>/dev/null && fault "the tool that hangs is ended"

  # A Trash that this terminal may not look into is told of, and one of somebody else in it stays.
  lay; mkdir -p "$folder/home/.Trash/Tamo.app/Contents"; player=$everything run
  [[ -e $folder/home/.Trash/Tamo.app ]] || fault "what somebody else threw away stays"
  lay; echo 'exit 1' | tool ls; player=$everything run
  [[ $status == 0 && $said == *"empty it in the Finder" ]] || fault "the Trash is told of: $status $said"

  # A real Tamo that was put there by a run bears its mark as an attribute.
  lay
  mkdir -p "$folder/Applications/Tamo.app" "$folder/work/build"
  touch "$folder/Applications/Tamo.app/studio.pell.tamo.acceptance"
  echo "path $folder/Applications/Tamo.app" >"$folder/work/build/accept.journal"
  run
  [[ $status == 0 && ! -e $folder/Applications/Tamo.app ]] || fault "a real Tamo that was put there is taken away: $said"
}

interruptions() {
  for signal in INT TERM HUP; do
    lay; player="$everything; kill -$signal \$\$; sleep 5" run
    ((status > 128)) || fault "an interrupted run ends by its signal: $signal $status"
    nothing_left "after $signal"
  done

  # A player that is at work when the signal comes does not keep it waiting, and ends with it. Another start meanwhile is
  # refused, and takes nothing away.
  lay
  player="$everything; echo \$BASHPID >'$folder/played'; exec sleep 300" run &
  first=$!
  for ((look = 0; look < 300; look++)); do [[ -s $folder/played ]] && break; sleep 0.1; done
  held=$(sed -n 's/^run //p' "$folder/work/build/accept.journal")
  run
  [[ $status == 2 && $said == "accept: another ./accept is at work here, as process $held" ]] ||
    fault "a second run is refused: $status $said"
  [[ -e $folder/Applications/Tamo.app && -e $folder/registered ]] || fault "a second run takes nothing away"
  SECONDS=0
  kill -TERM "$held"
  wait "$first"
  ((SECONDS < 60)) || fault "a signal is heard at once, and not after $SECONDS s"
  kill -0 "$(<"$folder/played")" 2>/dev/null && fault "the player ends with the run"
  nothing_left "after a signal during the play"
}

killings() {
  # One that was killed at each of its steps leaves a journal, and the next start clears first.
  lines=$(grep -c . <<<"$everything")
  for ((count = 4; count <= lines; count++)); do
    lay; player="$(head -n "$count" <<<"$everything"); kill -KILL \$\$" run
    [[ -e $folder/work/build/accept.journal ]] || fault "step $count: a killed run leaves its journal"
    player='true' run
    [[ $status == 0 && $said == *"clearing what it left"* ]] || fault "step $count: the next start clears: $status $said"
    nothing_left "step $count"
  done
}

remains() {
  # What bears no mark is never taken away, whatever a journal says.
  lay
  mkdir -p "$folder/Applications/Tamo.app/Contents" "$folder/home/Documents" "$folder/work/build"
  printf 'path %s\n' "$folder/Applications/Tamo.app" "$folder/home/Documents" / >"$folder/work/build/accept.journal"
  run
  [[ $status == 1 && -e $folder/Applications/Tamo.app && -e $folder/home/Documents ]] || fault "only what is marked goes: $said"
  [[ $said == *"left alone, for it bears no mark of this command: $folder/Applications/Tamo.app"* ]] || fault "it is told: $said"
  [[ -e $folder/work/build/accept.journal ]] || fault "the journal stays as long as something is left"

  # What cannot be removed is told, with the way to do it.
  lay
  mkdir -p "$folder/work/build"
  sample "$folder/Applications/Tamo.app"
  echo "path $folder/Applications/Tamo.app" >"$folder/work/build/accept.journal"
  echo 'exit 1' | tool rm
  run
  [[ $status == 1 && $said == *"could not be removed; take it away with: sudo rm -rf \"$folder/Applications/Tamo.app.making\""* ]] ||
    fault "what stays is told by the name that it has: $status $said"

  # What an administrator has put into a folder that is not the user's stays whole, and is told of at every start.
  lay
  mkdir -p "$folder/work/build"
  sample "$folder/Applications/Tamo.app"
  echo "path $folder/Applications/Tamo.app" >"$folder/work/build/accept.journal"
  echo 'exit 1' | tool mv
  for start in first second; do
    run
    [[ $status == 1 && $said == *"sudo rm -rf \"$folder/Applications/Tamo.app\""* ]] || fault "the $start start tells: $said"
  done

  # An agent that stays registered is told as well.
  lay
  mkdir -p "$folder/work/build"
  touch "$folder/registered"
  echo registered >"$folder/work/build/accept.journal"
  tool launchctl <<<'exit 0'
  run
  [[ $status == 1 && $said == *"launchctl bootout gui/501/studio.pell.tamo.core"* ]] || fault "the agent is told: $said"
}

rm -rf "$folder.tools"
declare -F "$group" >/dev/null || { echo "no such group: $group" >&2; exit 2; }
"$group"
rm -rf "$folder" "$folder.tools"
((faults == 0)) && echo "all is well"
exit $((faults > 0))
