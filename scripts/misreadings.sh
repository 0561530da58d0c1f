# shellcheck shell=bash
# Sourced by prove/mutate: puts the misreadings of tests/mutation/misreadings into a copy of the tree, one at a time, and
# shows each to the test programs that it names until one falls.
#
#   try_misreadings [NAME…]   those of the names and of the tables of these names, or all; gives 1 when any is not caught

world=()

# Most tests of the scenarios wait, so they run in shares side by side.
scenario_shares=$((2 * $(nproc)))

# A program of its own world: with it ends all that it started, and what it leaves in /tmp is gone. Where the machine
# does not allow that it runs as it is. A tree below /tmp would be out of its own sight.
choose_world() {
  world=()
  local alone=(unshare --pid --fork --kill-child --mount --mount-proc
    bash -c 'mount -t tmpfs none /tmp && "$@"; exit' -)
  [[ $PWD == /tmp/* ]] || ! "${alone[@]}" true 2>/dev/null || world=("${alone[@]}")
}

# A lane has a copy of the tree and a build to itself. What an entry does not change comes out of a compiler cache of
# these rounds' own, also what the entry before it had changed, and what another lane has compiled.
open_lane() {
  work=$1
  mkdir -p "$work/logs"
  ln -sfn ../original "$work/original"
  ln -sfn ../names "$work/names"
  mutator as-it-was
  export CCACHE_DIR=$PWD/build/mutation/ccache CCACHE_MAXSIZE=2G CCACHE_DEPEND=1 CCACHE_NOHASHDIR=1
  export CCACHE_BASEDIR=$PWD/$work CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
  configure_copy -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST
}

misread_binary() {
  case $1 in
    simulate) echo "$work/build/bin/simulate" ;;
    simulation | faults) echo "$work/build/tests/$1/$1" ;;
    soak_account) echo "$work/build/tests/soak/$1" ;;
    *) echo "$work/build/tests/$1" ;;
  esac
}

# Runs PROGRAM[:FILTER] for so many seconds at most; its output is in $work/logs/SHARE.log.
run_share() {
  local program=${1%%:*} filter="" limit=$2 share=$3
  [[ $1 != *:* ]] || filter=${1#*:}
  local arguments=(--gtest_fail_fast ${filter:+"--gtest_filter=$filter"})
  [[ $program != simulate ]] || arguments=("$simulated_runs")
  ulimit -c 0 -v 8000000
  exec "${world[@]}" timeout -k 1 "$limit" "$(misread_binary "$program")" "${arguments[@]}" \
    >"$work/logs/$share.log" 2>&1 </dev/null
}

# Gives the status of the first share that does not pass; those that still run are ended then.
run_tests_of() {
  local shares=1 share code=0 ended="" end=KILL
  local -A running=()
  # Outside a world of its own it is timeout that is ended, which passes that on.
  ((${#world[@]})) || end=TERM
  rm -f "$work/logs"/*
  [[ $1 != scenario ]] || shares=$scenario_shares
  for ((share = 0; share < shares; ++share)); do
    GTEST_TOTAL_SHARDS=$shares GTEST_SHARD_INDEX=$share run_share "$1" "$2" "$share" &
    running[$!]=yes
  done
  while ((${#running[@]} && code == 0)); do
    wait -n -p ended "${!running[@]}" || code=$?
    unset "running[$ended]"
  done
  ((${#running[@]} == 0)) || kill -"$end" "${!running[@]}" 2>/dev/null || true
  wait
  return "$code"
}

# The test that fell, or in which the program ended; of the simulation the rule and the run.
fallen_test() {
  local fallen
  fallen=$(sed -n 's/^\[  FAILED  \] \([^ ,]*\).*/\1/p; s/^seed \([0-9]*\): [^:]*: \([^:]*\):.*/\2, seed \1/p' \
    "$work/logs"/*.log | head -n 1)
  [[ $fallen ]] || fallen=$(cat "$work/logs"/*.log | sed -n 's/^\[ RUN      \] //p' | tail -n 1)
  echo "$fallen"
}

# Without a misreading all of it has to pass, within two runs; asked once. One that takes three times as long, and five seconds, hangs.
must_pass() {
  [[ -z ${limits[$1]:-} ]] || return 0
  local begun
  mutator as-it-was
  build "${1%%:*}" || broken
  begun=${EPOCHREALTIME/./}
  run_tests_of "$1" 900 || run_tests_of "$1" 900 ||
    { echo "mutate: $1 fails without a misreading   (logs: $work/logs)"; exit 1; }
  limits[$1]=$(((${EPOCHREALTIME/./} - begun) * 3 / 1000000 + 5))
}

# Sets `outcome` and `fallen`: whether a program passes with the change that is in the tree, and which test fell.
look_at() {
  local code=0
  { run_tests_of "$1" "${limits[$1]}" || code=$?; } 2>/dev/null
  outcome=$(verdict_of "$code") fallen=""
  ((code == 0)) || fallen=$(fallen_test)
}

# Sets `outcome` and `fallen` for a misreading and a program.
ask() {
  local name=$1 program=$2
  must_pass "$program"
  mutator misread "$name" >"$work/fault" || { outcome=gone fallen=$(<"$work/fault"); return; }
  if ! build "${program%%:*}"; then
    outcome=build fallen=""
    # A test may be one that the compiler judges.
    ! grep -q "static assertion failed" "$work/build.log" || outcome=test fallen="a static assertion"
    return
  fi
  look_at "$program"
  # Real processes and limits of time may fall by the machine's load alone: they have to do it twice.
  case $outcome:$program in
    survived:*) ;;
    time:* | *:contract* | *:scenario* | *:unit_stage* | *:soak*) look_at "$program" ;;
  esac
}

try_misreading() {
  local name=$1 program outcome fallen="" begun=$EPOCHREALTIME
  for program in "${@:2}"; do
    ask "$name" "$program"
    [[ $outcome == survived ]] || break
  done
  printf '%s\t%s\t%s\t%s\n' "$name" "$outcome" "${program%%:*}" "$fallen" >>"$work/../findings.tsv"
  awk -v name="$name" -v outcome="$outcome" -v program="${program%%:*}" -v test="$fallen" -v begun="$begun" \
    -v ended="$EPOCHREALTIME" 'BEGIN {
      told["test"] = "caught by " program; told["time"] = "caught by time in " program
      told["crash"] = "caught by a crash of " program; told["survived"] = "SURVIVED"
      told["build"] = "DOES NOT BUILD"; told["gone"] = "ITS PLACE IS GONE"
      printf "%s: %s%s   %.1f s\n", name, told[outcome], test ? ", " test : "", ended - begun
    }'
}

# The next line of the entries, whichever lane asks.
next_entry() {
  local status=0
  flock 4
  IFS=$'\t' read -r -u 3 name programs || status=1
  flock -u 4
  return "$status"
}

run_lane() {
  local name programs
  open_lane "$1"
  limits=()
  while next_entry; do
    # shellcheck disable=SC2086
    try_misreading "$name" $programs
  done
  mutator as-it-was
}

# As many as there are processors; a lane's first build is dear, so a few entries have one.
lanes_for() {
  local lanes=${JOBS:-$(nproc)}
  ((lanes <= 4)) || lanes=4
  (($1 >= 40)) || lanes=1
  echo "$lanes"
}

try_misreadings() {
  local round=build/mutation/misreadings lane lanes players=() failed=0 begun=$SECONDS
  work=$round
  mkdir -p "$work"
  : >"$work/findings.tsv"
  mutator plan-misreadings "$@"
  choose_world
  lanes=$(lanes_for "$(wc -l <"$work/entries")")
  exec 3<"$work/entries" 4>"$work/lock"
  for ((lane = 1; lane <= lanes; ++lane)); do
    run_lane "$round/lane$lane" &
    players+=($!)
  done
  # What runs in the background does not hear the terminal.
  trap 'kill "${players[@]}" 2>/dev/null; exit 130' INT TERM
  for lane in "${players[@]}"; do wait "$lane" || failed=1; done
  trap - INT TERM
  echo "All in $((SECONDS - begun)) seconds"
  mutator report-misreadings
  return "$failed"
}
