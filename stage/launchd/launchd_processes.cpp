#include "stage/launchd/launchd_processes.hpp"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/posix/argument_vector.hpp"
#include "stage/common/program_log.hpp"
#include "stage/common/stage_census.hpp"
#include "values/fatal.hpp"

namespace tamo::stage {
namespace {

/// Standard error is launchd's log: whoever starts it leads it there.
void note(const std::string& text) {
  logLine(STDERR_FILENO, text);
}

/// Nothing of launchd's own environment: a job sees what its definition says and what every job of a Mac has.
std::vector<std::string> environmentFor(const StageRoot& root, const JobDefinition& definition) {
  // A definition may set its own PATH and HOME. What it is called and where it runs is not its to choose.
  auto variables = definition.environment;
  variables.emplace("PATH", "/usr/bin:/bin:/usr/sbin:/sbin");
  variables.emplace("HOME", root.home());
  variables["XPC_SERVICE_NAME"] = definition.label;
  variables["TAMO_STAGE"] = root.directory();
  std::vector<std::string> environment;
  environment.reserve(variables.size());
  for (const auto& [name, value] : variables)
    environment.push_back(name + "=" + value);
  return environment;
}

/// How every job is started: an own group, no signal blocked or ignored, the log as its output, nothing else open. A
/// job leads a group of its own, as it does on a Mac, where the hard stop then kills the whole of it.
class SpawnSettings {
 public:
  explicit SpawnSettings(const std::string& log) {
    ::posix_spawn_file_actions_init(&actions_);
    ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_APPEND,
                                       0644);
    ::posix_spawn_file_actions_adddup2(&actions_, STDOUT_FILENO, STDERR_FILENO);
    ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
    ::posix_spawn_file_actions_addchdir_np(&actions_, "/");
    sigset_t signals;
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawnattr_setflags(&attributes_,
                               POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    ::posix_spawnattr_setpgroup(&attributes_, 0);
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes_, &signals);
    ::sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&attributes_, &signals);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    ::posix_spawn_file_actions_destroy(&actions_);
    ::posix_spawnattr_destroy(&attributes_);
  }
  [[nodiscard]] const posix_spawn_file_actions_t* actions() const { return &actions_; }
  [[nodiscard]] const posix_spawnattr_t* attributes() const { return &attributes_; }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

Ending endingOf(const siginfo_t& info) {
  return {.signalled = info.si_code != CLD_EXITED, .number = info.si_status};
}

std::string endingText(pid_t pid, const Ending& ending) {
  return "pid " + std::to_string(pid) + (ending.signalled ? " ended by signal " : " exited with ") +
         std::to_string(ending.number);
}

}  // namespace

/// A helper whose parent is gone becomes a child of this process, and is found when the stage ends.
LaunchdProcesses::LaunchdProcesses(const StageRoot& root) : root_(root), journal_(root), errands_(root) {
  if (::prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0) values::fatal("launchd cannot adopt orphans");
}

std::optional<pid_t> LaunchdProcesses::start(const JobDefinition& definition) {
  const auto executable = root_.existing(definition.program);
  if (!executable) {
    note(definition.label + ": nothing at " + definition.program);
    return std::nullopt;
  }
  // The file is the one that the stage's links lead to; what the job takes for its name is what its list says.
  const SpawnSettings settings(root_.control("core.log"));
  auto arguments = definition.arguments;
  auto environment = environmentFor(root_, definition);
  pid_t pid = 0;
  const int error =
      ::posix_spawn(&pid, executable->c_str(), settings.actions(), settings.attributes(),
                    platform::vectorOf(arguments).data(), platform::vectorOf(environment).data());
  if (error != 0) {
    note(definition.label + ": " + definition.program + " cannot be started: " + std::strerror(error));
    return std::nullopt;
  }
  note(definition.label + ": started as pid " + std::to_string(pid));
  journal_.note("job", {std::to_string(pid), definition.label});
  return pid;
}

/// Each signal is noted before it is sent, for what comes of it others note at once.
void LaunchdProcesses::terminate(pid_t pid) {
  note("SIGTERM to pid " + std::to_string(pid));
  journal_.note("signals", {std::to_string(SIGTERM), "process", std::to_string(pid)});
  ::kill(pid, SIGTERM);
}

void LaunchdProcesses::kill(pid_t pid) {
  note("SIGKILL to pid " + std::to_string(pid));
  journal_.note("signals", {std::to_string(SIGKILL), "process", std::to_string(pid)});
  ::kill(pid, SIGKILL);
}

/// Mostly nobody is left in the group, which is no failure.
void LaunchdProcesses::killGroup(pid_t group) {
  journal_.note("signals", {std::to_string(SIGKILL), "group", std::to_string(group)});
  ::killpg(group, SIGKILL);
}

/// Looked at before it is reaped, so that its group can be killed while nobody else can have the number.
void LaunchdProcesses::reap(JobTable& jobs, JobTable::Time now) {
  for (;;) {
    siginfo_t info{};
    if (::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid == 0) return;
    const auto pid = info.si_pid;
    jobs.dying(pid);
    ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED);
    const auto ending = endingOf(info);
    note(endingText(pid, ending));
    journal_.note("reaped", {std::to_string(pid), ending.signalled ? "signal" : "exited",
                             std::to_string(ending.number)});
    if (!errands_.ended(pid, ending)) jobs.ended(pid, ending, now);
  }
}

/// SIGKILL at once: the stage is being taken down, and a Core that was told to ignore SIGTERM must not hold that up.
void LaunchdProcesses::endAll() {
  for (;;) {
    for (const auto child : childrenOf(::getpid()))
      ::kill(child, SIGKILL);
    // One at a time: each death may hand over children that have to be looked for anew.
    if (::waitpid(-1, nullptr, 0) < 0 && errno == ECHILD) return;
  }
}

}  // namespace tamo::stage
