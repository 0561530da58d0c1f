# Sourced by ./rehearse: a downloaded Tamo moves into an /Applications that its user may not write to.

result="Users/tamo/Library/Containers/studio.pell.Tamo/Data/Library/Application Support/Tamo/move-to-applications.json"

# Waits until a command succeeds, ten seconds at most.
wait_for() {
  local attempt
  for ((attempt = 0; attempt < 1000; attempt++)); do
    "$@" && return
    sleep 0.01
  done
  die "waited in vain: $*"
}
has_prompt() { grep -q ' asked: ' "$root/.stage/prompts" 2>/dev/null; }
has_started() { grep -q ': started as ' "$root/.stage/app.log" 2>/dev/null; }
has_result() { [[ -e $root/$result ]]; }
runs_from() { stage status | grep -qF "$root$1/Contents/MacOS/Tamo"; }

# The seconds since the companion's start, of a moment as date or stat tell it.
begin() { started=$(date +%s%N); }
since_start() {
  local moment
  moment=$(date -d "$1" +%s%N)
  printf '%6.1f s' "$(((moment - started) / 10000000))e-2"
}
# The last line of a log of the stage that holds a text begins with its moment.
moment_of() { grep -F -- "$2" "$root/.stage/$1" | tail -n 1 | cut -d' ' -f1 | cut -f1; }
told() { printf '    %s  %s\n' "$(since_start "$1")" "$2"; }

lay_stage --bare
stage copy downloaded --build 5000 --quarantined
stage applications closed
stage administrator wait
stage open downloaded
wait_for has_started
tamo=$(sed -n 's/.* app \([0-9]*\): started as .*/\1/p' "$root/.stage/app.log")
say "A stage is laid in $root. Its user has opened Tamo from Downloads, where it was unpacked;
nothing is installed, and the user may not write into /Applications:"
ls -ld "$root/Applications" "$root/Users/tamo/Downloads/Tamo.app" | sed "s|$root||; s/^/    /"
files=$(find "$root/Users/tamo/Downloads/Tamo.app" -type f | wc -l)

say "move-to-applications"
begin
stage run --copy downloaded -- --core-action move-to-applications 2>&1 | sed -u 's/^/    /' &
companion=$!
wait_for has_prompt
echo "    the prompt: $(grep -F ' asked: ' "$root/.stage/prompts" | cut -d' ' -f3-)"
sleep 1
stage administrator agree
echo "    its user types the password of an administrator"
wait_for has_result
echo "    the result: $(cat "$root/$result")"
sleep 0.5
kill "$tamo"
echo "    Tamo in Downloads, pid $tamo, quits"
wait "$companion" || die "the companion failed"
wait_for runs_from /Applications/Tamo.app
[[ $(cat "$root/.stage/front") == /Applications/Tamo.app ]] || die "the installed copy is not in front"
draw

say "When, after the companion's start"
told "$(moment_of prompts 'asked: ')" "the prompt is on the screen; 0.4 s of it are the intake of requests"
told "$(moment_of prompts 'answered: ')" "its user agrees"
told "$(moment_of launchd.log 'exited with 0')" "the administrator's ditto and xattr have ended"
told "$(moment_of log 'move-to-applications -> ')" "the old copy is in the Trash, and the line is in the log"
told "$(stat -c %y "$root/$result")" "the result is recorded"
told "$(moment_of app.log "app $tamo: ends")" "the old copy has quit"
told "$(moment_of app.log 'started as ')" "the installed copy runs"
told "$(stat -c %y "$root/.stage/front")" "and is in front"

marks=$(TAMO_STAGE=$(realpath "$root") "$root/usr/bin/xattr" -r /Applications/Tamo.app | grep -c quarantine || true)
copied=$(find "$root/Applications/Tamo.app" -type f | wc -l)
[[ $copied == "$files" && $marks == 0 ]] || die "the copy is not what it should be"
say "What happened
    The user's own ditto was not allowed to write into /Applications. The administrator's was, by another process:
    $copied of $files files are in /Applications/Tamo.app, and none carries the mark of a download any more.
    In the Trash: $(ls "$root/Users/tamo/.Trash" | tr '\n' ' ')
    In front: $(cat "$root/.stage/front")"
