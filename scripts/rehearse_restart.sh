# Sourced by ./rehearse: the restart of a Core that ignores SIGTERM.

companion() { stage run -- --core-action "$1" 2>&1 | sed 's/^/    /'; }

# The job's process as launchd prints it, waited for; empty when there is none.
core_pid() {
  local pid attempt
  for ((attempt = 0; attempt < 100; attempt++)); do
    pid=$(stage launchctl print "gui/$(stage_user)/studio.pell.tamo.core" 2>/dev/null | sed -n 's/^\tpid = //p')
    [[ -n $pid ]] && { echo "$pid"; return; }
    sleep 0.05
  done
}
stage_user() { stage status | sed -n 's/^stage .*, user \([0-9]*\),.*/\1/p'; }

# Seconds between two lines of launchd's own log, which begin with the time.
seconds_between() {
  local from to
  from=$(date -d "$(grep -F "$1" "$root/.stage/launchd.log" | tail -n 1 | cut -d' ' -f1)" +%s%N)
  to=$(date -d "$(grep -F "$2" "$root/.stage/launchd.log" | tail -n 1 | cut -d' ' -f1)" +%s%N)
  printf '%d.%02d' $(((to - from) / 1000000000)) $(((to - from) % 1000000000 / 10000000))
}

lay_stage
[[ -z $picture ]] || stage copy installed --program receipts
stage core term=ignore children=1
say "A stage is laid in $root. The first Core on it ignores SIGTERM. The log lines are the system's own."

say "register"
companion register
before=$(core_pid)
[[ -n $before ]] || die "the Core did not start"
sleep 0.2
members=$(pgrep -c -g "$before")
echo "    The Core runs as pid $before and leads a process group of $members. launchctl prints it as the newest systems do:"
stage launchctl print "gui/$(stage_user)/studio.pell.tamo.core" |
  sed -n '/LWCR = {/,/^\t}/p; /exit timeout = /p; /^\tpid = /p' | sed 's/^\t/        /; s/\t/  /g'
# Only this Core misbehaves: the next one would otherwise keep the unregister waiting for launchd's exit timeout.
stage core term=obey

say "restart"
companion restart
# The new Core has come up by then, and nobody has looked at it yet, which would be in the picture.
[[ -z $picture ]] || sleep 0.3
draw
after=$(core_pid)
[[ -n $after && $after != "$before" ]] || die "there is no new Core"
waited=$(seconds_between "asked: kickstart -k" "pid $before ended by signal 9")
left=$(pgrep -c -g "$before" || true)
[[ $left == 0 ]] || die "$left of the old group still run"

say "status"
companion status

say "unregister"
companion unregister

[[ $(stage ps | wc -l) == 1 ]] || die "something else than launchd still runs on the stage"
say "What happened
    The Core (pid $before) was asked to stop by launchctl's kickstart, and ignored it.
    $waited s later its whole process group, $members processes, was killed; none of them is left.
    launchd started a new Core (pid $after), and the agent was enabled throughout.
    After unregister, nothing of the Core runs."
