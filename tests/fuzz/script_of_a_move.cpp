#include "fuzz/script_of_a_move.hpp"

#include "fakes/fake_files.hpp"
#include "fakes/fake_user_files.hpp"
#include "fuzz/insist.hpp"
#include "move/bundle_copy.hpp"
#include "stage/tools/osascript.hpp"

namespace tamo::fuzz {
namespace {

/// Notes what osascript is started with; no tool can be started.
class NotingProcesses : public platform::Processes {
 public:
  [[nodiscard]] std::unique_ptr<platform::Tool> start(const platform::ToolLaunch& launch) override {
    if (launch.path == "/usr/bin/osascript") arguments = launch.arguments;
    return nullptr;
  }
  std::vector<std::string> arguments;
};

std::string askedScript() {
  NotingProcesses processes;
  fakes::Ledger ledger;
  fakes::FakeClock clock(ledger);
  fakes::FakeFiles files(ledger, clock);
  fakes::FakeUserFiles userFiles(ledger, clock, files);
  userFiles.unwritable.insert("/b");
  BundleCopy copy({.runner = ProcessRunner(processes), .files = files, .userFiles = userFiles});
  insist(copy.copy("/a/Tamo.app", "/b/Tamo.app") == "not_writable",
         "the copy fails without an administrator");
  const auto use = stage::osascriptUse(processes.arguments);
  insist(use && use->arguments == std::vector<std::string>{"/a/Tamo.app", "/b/Tamo.app"},
         "the paths are the script's arguments");
  return use->script;
}

}  // namespace

const std::string& scriptOfAMove() {
  static const auto script = askedScript();
  return script;
}

}  // namespace tamo::fuzz
