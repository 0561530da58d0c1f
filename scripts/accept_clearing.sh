# shellcheck shell=bash
# Sourced by scripts/accept_mac.sh: takes away what the journal tells of, and nothing that does not bear a mark of ours.
#
#   clear_up   true when nothing is left; otherwise it says what is, and how to take it away

clear_up() {
  local line left=no
  [[ -e $journal ]] || return 0
  end_programs
  if grep -qx registered "$journal"; then take_back_registration || left=yes; fi
  while IFS= read -r line; do
    case "$line" in 'path '*) clear_path "${line#path }" || left=yes ;; esac
  done <"$journal"
  [[ $left == no ]] || return 1
  rm -f "$journal"
}

# Programs of a sample and no others: the names alone could be anybody's.
end_programs() {
  local copy
  while IFS= read -r copy; do
    [[ -e $copy/$sample_mark ]] && pkill -f "^$copy/Contents/" 2>/dev/null
  done < <(sed -n 's/^path \(.*\/Tamo\.app\)$/\1/p' "$journal")
  return 0
}

is_registered() { launchctl print "$(job)" >/dev/null 2>&1; }

# By the companion where it is there, as a user would; otherwise by launchd.
take_back_registration() {
  is_registered || return 0
  if [[ -e $applications/Tamo.app/$sample_mark ]]; then
    open -n -W "$applications/Tamo.app/$companion" --args --core-action unregister || true
  fi
  is_registered || return 0
  launchctl bootout "$(job)" || true
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
  echo "accept: could not be removed; take it away with: sudo rm -rf \"$path\"" >&2
  return 1
}

# Under another name first: what is cut off in the middle has lost its mark perhaps, but not that name.
remove_whole() {
  local going=$1
  if [[ $going == */Tamo.app || $going == "$(data_directory)" ]] && mv "$going" "$going.making" 2>/dev/null; then
    going=$going.making
  fi
  rm -rf "$going" 2>/dev/null || true
  [[ ! -e $going ]]
}

# What is being made or removed has a name that nobody else uses, and so has the folder in Downloads. A container that the system keeps has a list of the system's own in it.
is_ours() {
  local path=${1%/}
  case "$path" in
    */Tamo.app.making | "$(data_directory).making" | "$home/Downloads/Tamo acceptance") return 0 ;;
    */Tamo.app) [[ -e $path/$sample_mark ]] ;;
    "$(data_directory)") [[ -e $path/$data_mark ]] ;;
    "$(container)") [[ ! -e $path/.com.apple.containermanagerd.metadata.plist ]] ;;
    *) return 1 ;;
  esac
}
