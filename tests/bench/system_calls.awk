# Tells what each system call of one program is for, from a trace of `strace -f -b execve -y -s 300`:
#
#   awk -f system_calls.awk TRACE TRACE      the trace twice; prints "GROUP<tab>CALLS" for each group
#
# Only the calls of the program's own threads count, without those of the tools that it starts. A call that is told in two
# halves counts once, and one that the kernel takes up again after a signal is no new one.

# The first time through: which ids are threads of the program.
NR == FNR {
  if (NR == 1) own[$1] = 1
  if (own[$1] && /CLONE_THREAD/ && /unfinished/) clones[$1] = 1
  if (own[$1] && /CLONE_THREAD/ && match($0, /= [0-9]+$/)) own[substr($0, RSTART + 2)] = 1
  if (clones[$1] && /clone3? resumed/ && match($0, /= [0-9]+$/)) { own[substr($0, RSTART + 2)] = 1; delete clones[$1] }
  next
}

!own[$1] || /resumed>/ || /restart_syscall/ || /^[0-9]+ +(\+\+\+|---)/ { next }

{ calls[group($0, $1)]++ }

END { for (name in calls) print name "\t" calls[name] }

# What the mask of signals is put back after is what it was set for.
function masks(line, thread,    name) {
  name = line ~ /\[PIPE\]/ ? "log" : "tool"
  if (line ~ /RT_1|RTMIN/ || stackOf == thread) name = "thread"
  if (line ~ /SIG_SETMASK/) return thread in masked ? masked[thread] : "thread"
  masked[thread] = name
  return name
}

# A socket is known by its number from the call that makes it to the one that closes it.
function sockets(line,    number) {
  if (!match(line, /(socket|UNIX-STREAM|UNIX):\[[0-9]+/)) return ""
  number = substr(line, RSTART, RLENGTH)
  if (line ~ / socket\(/) socketOf[number] = line ~ /SOCK_NONBLOCK/ ? "loop" : "state"
  return number in socketOf ? socketOf[number] : ""
}

function group(line, thread,    name) {
  if (!begun && line ~ /prctl\(PR_SET_NO_NEW_PRIVS|clock_nanosleep/) begun = 1
  if (!begun) return "start"
  if (line ~ /rt_sigprocmask/) return masks(line, thread)
  # A thread's stack is made right before its start.
  stackOf = line ~ /mprotect/ ? thread : (line ~ /CLONE/ ? "" : stackOf)
  if (line ~ /CLONE_VFORK|RLIMIT_NOFILE|wait4|bin\/launchctl|mmap\(NULL, 36864|munmap\([^,]*, 36864/) return "tool"
  if (line ~ /CLONE_THREAD|MAP_STACK|mprotect|SIGRT|rseq|set_robust_list|madvise| exit\(/) return "thread"
  if (line ~ /prctl|capset|cmdline|O_PATH\|O_DIRECTORY\) =|rt_sigaction/ && line !~ /openat2/) return "host"
  if (line ~ /\.stage\/journal/) return "journal"
  if (line ~ /\.stage\/companions|eventfd|ppoll|accept4/) return "loop"
  if (line ~ /\.stage\/settings/) return "settings"
  if (line ~ /\.stage\/log| poll\(| [a-z]+\(2</) return "log"
  if ((name = sockets(line)) != "") return name
  if (line ~ /pidfd|\/proc\/[0-9]+\/stat/) return "look"
  if (line ~ /job\.lock|flock/) return "lock"
  if (line ~ /tamo-core-print|tamo-write|\/private\/var\/|\/T[>"]/) return "print"
  if (line ~ /Info\.plist|LaunchAgents|Applications\/Tamo\.app|getrandom/) return "bundle"
  if (line ~ /readlink\("\/proc\/self\/fd/) return "host"
  if (line ~ /nanosleep/) return "wait"
  if (line ~ /exit_group/) return "start"
  return "rest"
}
