#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

#include "acceptance/log_line.hpp"
#include "platform/kernel_processes.hpp"

/// Where checks are played: a stage, or a real Mac. A check arranges its situation and looks at what came of it
/// through these interfaces alone, and never asks which place it is.
///
/// What a place cannot arrange it says by raising CannotArrange, from any operation. That is raised and not
/// returned so that no check can overlook it: the check ends there as "not played here", with the reason. A
/// failure of the place itself is a PlaceError, and fails the check.
///
/// All paths are those of this machine, but for Copies::path(). One thread.
namespace tamo::acceptance {

class CannotArrange final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class PlaceError final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Which copy of the sample application is meant.
enum class Copy {
  Installed,
  /// The installed one by its path in small letters, where that leads to it. It cannot be placed or removed.
  InstalledInSmallLetters,
  Downloaded,
  Staged,
  Translocated
};

/// What a copy's launch agent list says.
struct Definition {
  /// Seconds.
  std::int64_t exitTimeout = 20;
  /// What follows the program's path in the arguments.
  std::vector<std::string> arguments{};
  /// The list in its binary form.
  bool binary = false;
};

struct Sample {
  Copy copy = Copy::Installed;
  std::string build = "4211";
  Definition definition{};
  /// Every file carries the mark of a download.
  bool marked = false;
};

struct Signature {
  /// Why that of the whole copy does not hold, in the words of the tool that looked; empty when it does.
  std::string fault;
  /// What the agent is signed under.
  std::string agentIdentifier;
};

/// The copies of the sample application, whole bundles with companion and agent.
class Copies {
 public:
  virtual ~Copies() = default;
  /// In place of what lies there. A translocated copy is made of the downloaded one, which must be there.
  virtual void place(const Sample& sample) = 0;
  virtual void remove(Copy copy) = 0;
  /// Writes the agent's list anew, whole; what launchd has loaded stays as it is.
  virtual void define(Copy copy, const Definition& definition) = 0;
  /// Changes the agent's executable and nothing else.
  virtual void changeExecutable(Copy copy) = 0;
  /// The path by which the product knows the copy, and the one by which this machine does.
  [[nodiscard]] virtual std::string path(Copy copy) const = 0;
  [[nodiscard]] virtual std::string folder(Copy copy) const = 0;
  /// How many files of the copy carry the mark of a download.
  [[nodiscard]] virtual int marked(Copy copy) const = 0;
  [[nodiscard]] virtual Signature signature(Copy copy) const = 0;
};

/// How a companion is started: with arguments, or by a URL that the system hands to it.
struct Start {
  Copy copy = Copy::Installed;
  std::vector<std::string> arguments{};
  std::optional<std::string> url{};
};

class Companions {
 public:
  virtual ~Companions() = default;
  /// Starts one as a user or the product would, without waiting, and gives its number among the started.
  virtual int start(const Start& start) = 0;
  [[nodiscard]] virtual bool ended(int started) = 0;
  /// Hands a URL to the companion that runs, or starts the installed one with it. What the system's tool said
  /// where it failed; empty otherwise.
  virtual std::string open(const std::string& url) = 0;
  /// The pids of those that run now, of any copy.
  [[nodiscard]] virtual std::vector<pid_t> running() = 0;
};

struct Printed {
  int status = 0;
  std::string text;
};

/// The agent's job, from outside any companion.
class Job {
 public:
  virtual ~Job() = default;
  /// What `launchctl print` says of it.
  [[nodiscard]] virtual Printed print() = 0;
  /// `launchctl kickstart -k`.
  virtual void restart() = 0;
};

/// The agent's process, where it is the sample's own Core.
class Core {
 public:
  virtual ~Core() = default;
  /// How it behaves from its next start on: the words of core_behaviour.hpp.
  virtual void behave(const std::string& words) = 0;
  /// What happened to it so far, a line each: "core PID: WHAT".
  [[nodiscard]] virtual std::vector<std::string> events() = 0;
};

/// What is left behind by those who acted.
class Evidence {
 public:
  virtual ~Evidence() = default;
  /// The wall clock's time, in microseconds since 1970, from which lines are asked for.
  [[nodiscard]] virtual std::int64_t now() = 0;
  /// The companion's lines since then. Waits until `endings` of them end an action, as long as the place's log
  /// may lag behind.
  [[nodiscard]] virtual std::vector<Line> lines(std::int64_t since, std::size_t endings) = 0;
  /// Why this user cannot read the companion's lines; empty where he can.
  [[nodiscard]] virtual std::string unreadable() = 0;
  /// What the system noted of companions that a condition of their own or a signal ended, since then.
  [[nodiscard]] virtual std::vector<std::string> crashes(std::int64_t since) = 0;
};

/// An application's program that runs, and the bundle that it was started from.
struct RunningApp {
  pid_t pid = 0;
  std::string bundle;
};

/// The user's side: Tamo's own program, the Trash, what the user allows.
class User {
 public:
  virtual ~User() = default;
  /// Opens the copy's own program, as a double click does.
  virtual void open(Copy copy) = 0;
  [[nodiscard]] virtual std::vector<RunningApp> applications() = 0;
  /// The path of the bundle in front, as the product knows it; empty when it is none of ours.
  [[nodiscard]] virtual std::string front() = 0;
  /// Where the directory behind a descriptor lies now.
  [[nodiscard]] virtual std::string whereabouts(int directory) = 0;
  /// Takes the approval of the agent away, or gives it back; where that takes a person, waits for it.
  virtual void approve(bool granted) = 0;
  /// The user may not write to /Applications from here on, and answers the prompt with "agree" or "cancel".
  virtual void loseApplications(const std::string& answer) = 0;
  /// Puts the machine to sleep for a while, and comes back once it is awake.
  virtual void sleepAWhile() = 0;
};

/// Somebody else who is logged in at the same machine, in a session beside this one.
class OtherUser {
 public:
  virtual ~OtherUser() = default;
  /// Has the installed copy's companion started there with that action, and gives its pid once it is seen to run. Where
  /// that takes a person, asks and waits for it.
  virtual pid_t start(const std::string& action) = 0;
  /// Whether that companion has ended.
  [[nodiscard]] virtual bool ended() = 0;
  /// The lines that it left.
  [[nodiscard]] virtual std::vector<Line> lines() = 0;
};

/// What goes wrong on demand. Each holds until the place is cleared.
class Faults {
 public:
  virtual ~Faults() = default;
  virtual void failNextRegister(const std::string& domain, int code, const std::string& text) = 0;
  virtual void failNextUnregister(const std::string& domain, int code, const std::string& text) = 0;
  /// launchctl does nothing for the verb and ends with the status.
  virtual void failLaunchctl(const std::string& verb, int status) = 0;
  /// Leaves in the log what a companion leaves there that a condition of its own ends.
  virtual void leaveLastWords(const std::string& reason) = 0;
};

/// Paths of this machine.
struct Paths {
  /// With a "/" at its end.
  std::string dataDirectory;
  std::string lockFile;
  std::string moveResult;
  std::string trash;
};

/// Of a user with that home and that temporary directory, which ends in a "/".
[[nodiscard]] Paths pathsOf(const std::string& home, const std::string& temporary);

/// One laid place, cleared of everything that an earlier check left. What it refers to outlives it.
struct Place {
  Copies& copies;
  Companions& companions;
  Job& job;
  Core& core;
  Evidence& evidence;
  User& user;
  OtherUser& otherUser;
  Faults& faults;
  const platform::KernelProcesses& kernel;
  Paths paths;
};

/// What kind of place it is, for the head of the report.
struct PlaceFacts {
  std::string kind;
  std::string system;
  std::string processor;
  std::string signature;
};

}  // namespace tamo::acceptance
