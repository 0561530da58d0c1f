#!/usr/bin/env bash
# Holds what ./accept does on a Mac before and after it plays to its word: with made-up tools, folders and a player.
#
#   accept_mac_test.sh PROJECT FOLDER   FOLDER is the test's own and is replaced
set -uo pipefail
project=$1
folder=$2
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

# A Mac on which everything is there and nothing stands in the way.
lay() {
  rm -rf "$folder"
  mkdir -p "$folder/bin" "$folder/Applications" "$folder/home/Downloads" "$folder/work/build"
  echo 'echo 14.5' | tool sw_vers
  echo 'exit 0' | tool xcode-select
  echo 'exit 0' | tool cmake
  echo 'exit 0' | tool ninja
  echo 'echo 501' | tool id
  echo 'exit 1' | tool pgrep
  echo "echo pkill \"\$*\" >>'$folder/asked'" | tool pkill
  echo "echo open \"\$*\" >>'$folder/asked'; rm -f '$folder/registered'" | tool open
  echo 'echo "  1) ABCDEF \"Developer ID Application: Somebody (TEAM000000)\""' | tool security
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

sample() { mkdir -p "$1/Contents/Resources"; touch "$1/Contents/Resources/acceptance-sample"; }

# Runs words of ./accept in the made-up Mac. `said` and `status` are what came of it. What is played is `player`.
player='true'
# shellcheck disable=SC2120
run() {
  said=$(
    cd "$folder/work" && PATH="$folder/bin:$PATH" HOME="$folder/home" bash -c '
      set -euo pipefail
      cd "$0"; source "$1/scripts/accept_mac.sh"; cd "$2"
      applications=$3/Applications home=$3/home journal=$3/work/build/accept.journal lsregister=true
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

lay; run
[[ $status == 0 ]] || fault "a Mac where all is there is played on: $said"

missing "macOS 13 or later is needed; this is 12.7.6" sw_vers <<<'echo 12.7.6'
missing "Xcode's command line tools are missing: xcode-select --install" xcode-select <<<'exit 2'
missing "there is no login session: log in at the screen, and start this in a terminal there" launchctl <<<'exit 125'
missing "less than 1000 MB are free on the disk of $folder/work" df <<<'echo head; echo "disk 9 9 999999 99% /"'
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

# Without the right to /Applications. Root may write everywhere, so the question itself is answered by the test.
no_right() {
  said=$(bash -c 'cd "$0"; source scripts/accept_mac.sh; applications=/nowhere; missing_right "$@"' "$project" "$@")
}
no_right
[[ $said == *"may not write to /nowhere"* ]] || fault "a user without the right is told: $said"
no_right --with-me move-administrator move-cancelled
[[ -z $said ]] || fault "the two checks without the right are played: $said"
no_right --with-me move-administrator register
[[ $said ]] || fault "no other check goes with them"

# What a run makes is taken away, whatever its status.
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
    home/Library/Containers/studio.pell.Tamo registered work/build/accept.journal; do
    [[ -e $folder/$item ]] && fault "$1: $item is left"
  done
}

lay; player=$everything run
[[ $status == 0 ]] || fault "a run that held ends with 0: $status $said"
nothing_left "after a run"
grep -q 'open .*--core-action unregister' "$folder/asked" || fault "the companion unregisters what it registered"
lay; player="$everything; return 1" run
[[ $status == 1 ]] || fault "a run that did not hold ends with 1: $status"
nothing_left "after a run that failed"

for signal in INT TERM HUP; do
  lay; player="$everything; kill -$signal \$\$; sleep 5" run
  ((status > 128)) || fault "an interrupted run ends by its signal: $signal $status"
  nothing_left "after $signal"
done

# One that was killed at each of its steps leaves a journal, and the next start clears first.
lines=$(grep -c . <<<"$everything")
for ((count = 4; count <= lines; count++)); do
  lay; player="$(head -n "$count" <<<"$everything"); kill -KILL \$\$" run
  [[ -e $folder/work/build/accept.journal ]] || fault "step $count: a killed run leaves its journal"
  player='true' run
  [[ $status == 0 && $said == *"clearing what it left"* ]] || fault "step $count: the next start clears: $status $said"
  nothing_left "step $count"
done

# What bears no mark is never taken away, whatever a journal says.
lay
mkdir -p "$folder/Applications/Tamo.app/Contents" "$folder/home/Documents"
printf 'path %s\n' "$folder/Applications/Tamo.app" "$folder/home/Documents" / >"$folder/work/build/accept.journal"
run
[[ $status == 1 && -e $folder/Applications/Tamo.app && -e $folder/home/Documents ]] || fault "only what is marked goes: $said"
[[ $said == *"left alone, for it bears no mark of this command: $folder/Applications/Tamo.app"* ]] || fault "it is told: $said"
[[ -e $folder/work/build/accept.journal ]] || fault "the journal stays as long as something is left"

# What cannot be removed is told, with the way to do it.
lay
sample "$folder/Applications/Tamo.app"
echo "path $folder/Applications/Tamo.app" >"$folder/work/build/accept.journal"
echo 'exit 1' | tool rm
run
[[ $status == 1 && $said == *"could not be removed; take it away with: sudo rm -rf \"$folder/Applications/Tamo.app\""* ]] ||
  fault "what stays is told: $status $said"

# An agent that stays registered is told as well.
lay
touch "$folder/registered"
echo registered >"$folder/work/build/accept.journal"
tool launchctl <<<'exit 0'
run
[[ $status == 1 && $said == *"launchctl bootout gui/501/studio.pell.tamo.core"* ]] || fault "the agent is told: $said"

rm -rf "$folder"
((faults == 0)) && echo "all is well"
exit $((faults > 0))
