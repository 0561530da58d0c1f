# shellcheck shell=bash
# Sourced by the commands at the root that build something.
#
#   quietly LOG COMMAND…     runs a step with its output in a log; shows the log's end when the step fails
#   build PRESET [TARGET…]   configures the preset and builds the targets, or everything
#   run_tests PRESET [ARGUMENT…]   runs the preset's tests, the arguments being ctest's; shows what ctest closes with, how many
#                            tests that were, and which did not run here, with their reasons, which `not_run` keeps

quietly() {
  local log=$1
  "${@:2}" >"$log" 2>&1 && return 0
  tail -n 120 "$log"
  echo "${0##*/}: failed: ${*:2}   (whole log: $log)"
  return 1
}

build() {
  local preset=$1
  shift
  mkdir -p build
  quietly "build/$preset.configure.log" cmake --preset "$preset" || return 1
  quietly "build/$preset.build.log" cmake --build "build/$preset" ${1:+--target} "$@"
}

# "NAME: reason" of every test that did not run, by its preset's name and a blank in front.
not_run=()

# Most of the tests that take long only wait, so there are twelve times as many at once as there are processors.
run_tests() {
  local preset=$1 log=build/$1.test.log
  shift
  quietly "$log" ctest --test-dir "build/$preset" --output-on-failure --no-tests=error -j "$((12 * $(nproc)))" "$@" || return 1
  grep -E 'tests passed|Total Test time' "$log"
  awk -f scripts/tests_run.awk "build/$preset/Testing/Temporary/LastTest.log"
  local test left=()
  mapfile -t left < <(awk -f scripts/not_run.awk "$log" "build/$preset/Testing/Temporary/LastTest.log")
  for test in "${left[@]}"; do
    echo "did not run: $test"
    not_run+=("$preset $test")
  done
}
