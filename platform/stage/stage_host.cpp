#include "platform/stage/stage_host.hpp"

#include <array>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"
#include "platform/stage/privileges.hpp"

namespace tamo::stage {

StageHost::Parts::Parts(const StageRoot& stage, const Journal& notes, const std::string& executable)
    : root(stage),
      journal(notes),
      clock(root),
      mainQueue(root),
      processes(root, journal),
      files(root),
      lockFiles(root),
      bundles(root, executable),
      user(root),
      userFiles(root, clock),
      localSockets(root),
      logSystem(root, clock),
      agentServices(root, bundles, threads, mainQueue),
      workspace(root, mainQueue, threads) {}

/// What nobody draws is not noted.
StageHost::Noted::Noted(Parts& parts)
    : journal(parts.journal),
      application(parts.application, journal),
      mainQueue(parts.mainQueue, journal),
      agentServices(parts.agentServices),
      workspace(parts.workspace, journal),
      processes(parts.processes),
      kernelProcesses(parts.kernelProcesses, journal),
      threads(parts.threads, journal),
      files(parts.files, journal),
      userFiles(parts.userFiles, journal),
      lockFiles(parts.lockFiles, journal),
      bundles(parts.bundles),
      user(parts.user),
      clock(parts.clock),
      localSockets(parts.localSockets),
      logSystem(parts.logSystem, journal) {}

StageHost::StageHost(const StageRoot& root, const Journal& journal, const std::string& executable)
    : parts_(root, journal, executable) {}

}  // namespace tamo::stage

namespace tamo::platform {
namespace {

/// The words of this process's command line, without the program. For the journal alone: whoever makes a host is
/// handed no words, because no other backend has a use for them. One call reads them, as much as there is room for.
std::vector<std::string> ownArguments() {
  const Descriptor opened(::open("/proc/self/cmdline", O_RDONLY | O_CLOEXEC));
  std::array<char, 65536> room;
  const auto count = uninterrupted([&] { return ::read(opened.get(), room.data(), room.size()); });
  const std::string line(room.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
  std::vector<std::string> words;
  for (std::size_t start = line.find('\0'); start != std::string::npos && start + 1 < line.size();) {
    const auto end = line.find('\0', start + 1);
    words.push_back(line.substr(start + 1, end - start - 1));
    start = end;
  }
  return words;
}

}  // namespace

/// Before anything is opened: what root may do no user of a Mac may.
std::unique_ptr<Host> makeHost() {
  stage::renouncePrivileges();
  const auto root = stage::StageRoot::fromEnvironment();
  // The one thread beside the main one shares its memory instead of setting up some of its own.
  ::mallopt(M_ARENA_MAX, 1);
  const stage::Journal journal(root);
  journal.note("companion", ownArguments());
  return std::make_unique<stage::StageHost>(root, journal, stage::executableAsLaunched());
}

}  // namespace tamo::platform
