# shellcheck shell=bash
# Sourced by scripts/accept_mac.sh: takes away what the journal tells of, and nothing that does not bear a mark of ours.
#
#   clear_up   true when nothing is left; otherwise it says what is, and how to take it away

clear_up() {
  local line left=no
  [[ -e $journal ]] || return 0
  end_programs
  await_tools
  if grep -qx registered "$journal"; then take_back_registration || left=yes; fi
  while IFS= read -r line; do
    case "$line" in 'path '*) clear_path "${line#path }" || left=yes ;; esac
  done <"$journal"
  if grep -qx trash "$journal"; then clear_trash; fi
  [[ $left == no ]] || return 1
  rm -f "$journal"
}

# Our own programs and no others: the names alone could be anybody's. One whose copy was moved meanwhile still bears the
# path that it was started by. A Core that minds nothing ends without its folder, and would not if it is stopped.
end_programs() {
  local path
  if [[ -e $(data_directory)/$data_mark ]]; then rm -rf "$(data_directory)/acceptance" || true; fi
  while IFS= read -r path; do
    case "$path" in
      "$(downloads)") path=$path/Tamo.app ;;
      */Tamo.app) is_ours "$path" || continue ;;
      *) continue ;;
    esac
    pkill -KILL -f "^$(literally "$path")/Contents/" 2>/dev/null || true
  done < <(sed -n 's/^path //p' "$journal")
  # Of a move that was cut off: the prompt for an administrator, and a copy that the system ran from a place of its own.
  grep -qx trash "$journal" || return 0
  pkill -f "osascript .*$(literally "$(downloads)")/" 2>/dev/null || true
  pkill -KILL -f '^(/private)?/var/folders/.*/AppTranslocation/.*/Tamo\.app/Contents/' 2>/dev/null || true
}

# The text as an extended regular expression that means it.
literally() { sed 's/[][\\.*^$(){}?+|]/\\&/g' <<<"$1"; }

# A tool outlives whoever started it, and would put back what is taken away.
await_tools() {
  local count
  for ((count = 0; count < 100; count++)); do
    pgrep -f '(ditto|codesign|plutil|xattr) .*(/Tamo\.app|tamo-acceptance-sample)' >/dev/null || return 0
    sleep 0.2
  done
}

# Gives a command that many seconds and ends it then: one that hangs keeps nothing else from being cleared.
within() {
  local seconds=$1 pid count
  shift
  "$@" &
  pid=$!
  for ((count = 0; count < seconds * 10; count++)); do
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.1
  done
  kill "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null
}

is_registered() { launchctl print "$(job)" >/dev/null 2>&1; }

# By the companion where it is there, as a user would: what is registered need not be loaded. Otherwise by launchd.
take_back_registration() {
  if is_ours "$applications/Tamo.app"; then
    within "$patience" open -n -W "$applications/Tamo.app/$companion" --args --core-action unregister || true
  fi
  is_registered || return 0
  within "$patience" launchctl bootout "$(job)" || true
  is_registered || return 0
  echo "accept: the agent is still registered; take it away with: launchctl bootout $(job)" >&2
  return 1
}

clear_path() {
  local path=$1
  [[ -e $path ]] || return 0
  if ! is_ours "$path"; then
    echo "accept: left alone, for it bears no mark of this command: $path" >&2
    return 1
  fi
  "$lsregister" -u "$path" >/dev/null 2>&1 || true
  remove_whole "${path%/}" && return 0
  [[ -e $path ]] || path=${path%/}.making
  echo "accept: could not be removed; take it away with: sudo rm -rf \"$path\"" >&2
  return 1
}

# Under another name first: what is cut off in the middle has lost its mark perhaps, but not that name. What cannot be
# renamed cannot be removed either, and keeps its mark.
remove_whole() {
  local going=$1
  if [[ $going == */Tamo.app || $going == "$(data_directory)" ]]; then
    mv "$going" "$going.making" 2>/dev/null || return 1
    going=$going.making
  fi
  rm -rf "$going" 2>/dev/null || true
  [[ ! -e $going ]]
}

# The copies that a move put into the Trash. A terminal without full disk access may not even look into it; that is told,
# and is no fault.
clear_trash() {
  local item
  [[ -d $home/.Trash ]] || return 0
  if ! ls "$home/.Trash" >/dev/null 2>&1; then
    echo "accept: copies of the sample may lie in the Trash, which this terminal may not look into; empty it in the Finder" >&2
    return 0
  fi
  for item in "$home/.Trash/Tamo"*.app; do
    if [[ -e $item/$sample_mark ]]; then rm -rf "$item" || true; fi
  done
}

# What is being made or removed has a name that nobody else uses, and so has the folder in Downloads. A container that the
# system keeps has a list of the system's own in it, and the lock file of an action is empty.
is_ours() {
  local path=${1%/}
  case "$path" in
    */Tamo.app.making | "$(data_directory).making" | "$(downloads)" | */tamo-acceptance-sample | */Shared/tamo-acceptance) return 0 ;;
    */Tamo.app) [[ -e $path/$sample_mark ]] || xattr -p "$copy_mark" "$path" >/dev/null 2>&1 ;;
    "$(data_directory)") [[ -e $path/$data_mark ]] ;;
    "$(container)") [[ ! -e $path/.com.apple.containermanagerd.metadata.plist ]] ;;
    */studio.pell.tamo.core.job.lock) [[ -f $path && ! -s $path ]] ;;
    *) return 1 ;;
  esac
}
