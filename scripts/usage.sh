# shellcheck shell=bash
# Sourced by every command first: the comment at a command's head is what it says of itself.
#
#   usage    tells it and ends with 2, for words that the command does not know
#
# A command that is called with --help tells it and ends with 0, before it does anything.

# The command is looked for by its name: by now it stands at the root, wherever it was called from.
told() {
  local command=${0##*/}
  [[ -e $command ]] || command=prove/$command
  awk 'NR > 1 && !/^#/ { exit } NR > 1 { sub(/^# ?/, ""); print }' "$command"
}

usage() {
  told
  exit 2
}

for word in "$@"; do
  [[ $word != -h && $word != --help ]] || { told; exit 0; }
done
