# Used by prove/coverage: reads the names of the source files, then llvm-cov's annotated text of all files, and prints a
# table of the folders, the missed branches, and a verdict.
#
# Code that is compiled several times, as templates are, appears several times: a line or a branch counts as taken
# when it was taken anywhere. What the compiler folded is no branch. A count that ends with E is a difference that came
# out negative, because a process forked or was killed half-way, and proves nothing. A comparison that the compiler
# writes ("= default") has branches that are none of ours, and clang does not count their false side.

BEGIN {
  count = split("app move launch hardstop guard platform platform/posix platform/stage values values/open " \
    "stage/common stage/launchd stage/core stage/tools stage/picture stage/control support", folders, " ")
  above = "^(app|move|launch|hardstop|guard)$"
  whole = "^(app|move|launch|hardstop|guard|platform|values)$"
  adapters = "^(platform/(posix|stage)|values/open|support)$"
  adaptersAsked = 90
  nothing = "^0$|E$"
}

FNR == NR { sources[$0] = 1; next }

/^\/.*:$/ {
  file = substr($0, length(root) + 1, length($0) - length(root) - 1)
  folder = file
  sub(/\/[^\/]*$/, "", folder)
  measured[file] = 1
  files[folder]++
  next
}

# "   12|   345|text": a line with code, and how often it ran.
match($0, /^ *[0-9]+\| *[0-9.]+[kMGTPE]?\|/) {
  split(substr($0, 1, RLENGTH), cells, "|")
  gsub(/ /, "", cells[1])
  gsub(/ /, "", cells[2])
  place = file ":" cells[1]
  if (!(place in lineFolder)) lines[folder]++
  lineFolder[place] = folder
  if (cells[2] !~ nothing) ran[place] = 1
  written = $0 !~ /operator(==|<=>).*= default;$/
  next
}

# "  |  Branch (12:7): [True: 3, False: 0]", where either may read "Folded" instead.
written && match($0, /Branch \([0-9]+:[0-9]+\): \[/) {
  place = substr($0, RSTART + 8)
  sub(/\).*/, "", place)
  counts = substr($0, RSTART + RLENGTH)
  take(place, "true", counts, "True: ")
  take(place, "false", counts, "False: ")
}

function take(place, way, counts, label,    at, count, branch) {
  at = index(counts, label)
  if (!at) return
  count = substr(counts, at + length(label))
  sub(/[],].*/, "", count)
  branch = file ":" place " never " way
  if (!(branch in branchFolder)) branches[folder]++
  branchFolder[branch] = folder
  if (count !~ nothing) taken[branch] = 1
}

function percent(hit, all) {
  return all ? sprintf("%.1f", int(1000 * hit / all) / 10) : "-"
}

function complain(text) {
  print "coverage: " text
  bad = 1
}

END {
  for (place in lineFolder) if (!(place in ran)) missedLines[lineFolder[place]]++
  for (branch in branchFolder) if (!(branch in taken)) missed[branchFolder[branch]]++
  printf "%-26s %6s %8s %8s %10s %10s %8s\n", "folder", "files", "lines", "lines %", "branches", "branches %", "missed"
  for (i = 1; i <= count; i++) {
    f = folders[i]
    printf "%-26s %6d %8d %8s %10d %10s %8d\n", f, files[f], lines[f], percent(lines[f] - missedLines[f], lines[f]),
      branches[f], percent(branches[f] - missed[f], branches[f]), missed[f]
  }
  print "platform/macos is not built on this system and not in the table."

  sorted = "LC_ALL=C sort -t: -k1,1 -k2,2n -k3,3n"
  for (branch in branchFolder) {
    if (!(branch in taken)) print branch | sorted
  }
  for (place in lineFolder) {
    if (!(place in ran) && lineFolder[place] ~ whole) print place " never ran" | sorted
  }
  close(sorted)

  for (source in sources) if (!(source in measured)) complain(source " is in no program that was run")
  for (i = 1; i <= count; i++) {
    f = folders[i]
    if (!files[f]) complain(f " was not measured")
    if (f ~ whole && missed[f] > 0) complain(f " has branches that no test takes")
    if (f ~ above && missedLines[f] > 0) complain(f " has lines that no test runs")
    if (f ~ adapters && 100 * missed[f] > (100 - adaptersAsked) * branches[f])
      complain(f " has less than " adaptersAsked " % of its branches taken")
  }
  if (!bad) print "coverage: all is well"
  exit bad
}
