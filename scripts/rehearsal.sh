# Sourced by ./rehearse: what every rehearsal has in common. Sets `root`, the stage's directory, once it is laid; with
# `keep` = yes the stage is left running at the end; `picture` is the file to draw into, or empty.

say() { printf '\n%s\n' "$*"; }
die() { echo "rehearse: $*" >&2; exit 1; }
stage() { build/daily/bin/tamo-stage "$1" "$root" "${@:2}"; }

# Lays a stage that is struck again when the script ends.
lay_stage() {
  root=$(mktemp -d "${TMPDIR:-/tmp}/tamo-rehearsal-XXXXXX")
  trap '[[ $keep == yes ]] || stage strike >/dev/null 2>&1 || rm -rf "$root"' EXIT
  trap 'exit 130' INT TERM
  stage lay "$@" >/dev/null
}

# Draws what has happened since the last companion's start, when a picture is wanted.
draw() {
  [[ $picture ]] || return 0
  stage picture "$picture"
  echo "    The picture of it is $picture."
}

end_rehearsal() {
  if [[ $keep == yes ]]; then
    say "The stage stays in $root:
    build/daily/bin/tamo-stage status $root
    build/daily/bin/tamo-stage strike $root"
  else
    stage strike >/dev/null
    [[ ! -e $root ]] || die "the stage is left"
    say "The stage is removed, with every process on it."
  fi
}
