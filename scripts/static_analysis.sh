#!/usr/bin/env bash
# Runs clang-tidy, as .clang-tidy says, over the product and the played Mac; shows what it finds and fails then.
#
#   scripts/static_analysis.sh
#
# Nearly all of the time goes into what the standard library declares, which is gone through once for each unit. So a unit
# is a library of the build and not a source: CMake puts the sources of each together. A unit that was found clean is not
# looked at again until its sources, a header or the rules change (build/tidy/clean).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/building.sh

folders=(values platform guard hardstop launch move app support stage)
tidy=build/tidy

# One a line, the largest first: a unit and its sources. The tests have none, what is only the precompiled headers has
# none, and of programs that differ in their constants one is enough.
units_of_build() {
  local unit sources
  sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$tidy/compile_commands.json" | sort -u | while read -r unit; do
    case ${unit#"$PWD"/} in
      "$tidy"/tests/* | tests/*) ;;
      "$tidy"/*/Unity/*)
        sources=$(sed -n 's/^#include "\(.*\)"$/\1/p' "$unit" | grep -v "^$PWD/$tidy/" | tr '\n' ' ') || true
        [[ -z $sources ]] || printf '%s\t%s\n' "$unit" "$sources"
        ;;
      "$tidy"/*) ;;
      *) printf '%s\t%s\n' "$unit" "$unit" ;;
    esac
  done | awk -F '\t' '!seen[$2]++ { print split($2, sources, " ") "\t" $0 }' | sort -k 1,1nr -s | cut -f 2-
}

# Sources that no unit has are told: those of a Mac are compiled on a Mac only.
left_out() {
  local source
  find "${folders[@]}" -name '*.cpp' | grep -v /macos/ | sort | while read -r source; do
    grep -qF "/$source" "$tidy/units" || echo "static analysis: $source is in no unit"
  done
}

# What a unit's findings depend on: its sources and its command, every header, and the rules.
key_of() {
  local unit=$1 sources=$2
  {
    # shellcheck disable=SC2086
    cat $sources "$tidy/headers" "$tidy/rules"
    grep -F -B 1 "\"file\": \"$unit\"" "$tidy/compile_commands.json"
  } | sha256sum | cut -d' ' -f1
}

# Marks a clean unit by its key; shows the findings of another.
analyse() {
  local unit=$1 key log
  key=$(key_of "$@")
  [[ ! -e $tidy/clean/$key ]] || return 0
  log=$tidy/logs/$key
  if clang-tidy-19 -p "$tidy" --quiet "$unit" >"$log" 2>"$log.told"; then
    touch "$tidy/clean/$key"
  else
    cat "$log"
    grep -i '^error' "$log.told"
    return 1
  fi
}

mkdir -p "$tidy/clean" "$tidy/logs"
quietly build/tidy.configure.log cmake --preset daily -B "$tidy" -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 \
  -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON
find "${folders[@]}" -name '*.hpp' -exec sha256sum {} + | sort >"$tidy/headers"
{ clang-tidy-19 --version; cat .clang-tidy; } >"$tidy/rules"
units_of_build >"$tidy/units"
failed=0
left_out | grep . && failed=1
begun=$SECONDS
export tidy
export -f analyse key_of
tr '\t' '\n' <"$tidy/units" | xargs -r -d '\n' -n 2 -P "$(nproc)" bash -c 'analyse "$1" "$2"' analyse || failed=1
echo "static analysis: $(cut -f2 "$tidy/units" | wc -w) sources in $(wc -l <"$tidy/units") units, $((SECONDS - begun)) s"
exit "$failed"
