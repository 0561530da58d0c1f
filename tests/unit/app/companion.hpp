#pragma once

#include <string>
#include <vector>

#include "app/core_delegate.hpp"
#include "fakes/fake_platform.hpp"

namespace tamo {

/// A companion on fakes: the installed release copy with an enabled agent whose Core, pid 4242, runs with the
/// definition that the bundle holds. A test changes what it is about and then says run(). Its own pid, its
/// group and the user's id are three numbers.
class Companion {
 public:
  static constexpr std::int32_t corePid = 4242;
  static inline const std::string target = "gui/501/studio.pell.tamo.core";
  static inline const std::string downloads = "/Users/u/Downloads/Tamo.app";
  static inline const std::string data = "/Users/u/Library/Application Support/Tamo/";

  Companion();

  /// Launches with these arguments after the program path, and goes on until nothing is left to do. The hard
  /// stop's watcher runs as soon as the main thread waits for it.
  void run(std::vector<std::string> arguments);
  /// The same with "--core-action" and the action.
  void act(const std::string& action) { run({"--core-action", action}); }
  /// The action alone, without a launch: the ledger then holds what the action did, and nothing else.
  void perform(const std::string& action);

  /// What launchctl prints of the job: a running Core, or none.
  [[nodiscard]] static std::string print(bool running = true, const std::string& exitTimeout = "20");
  void printsAlways(const std::string& text) {
    fakes.processes.always({"/bin/launchctl", "print"}, {.output = text});
  }
  /// The tools of the move do their work.
  void toolsMove();
  void kickstartGives(std::int32_t status);
  /// The companion runs from the application at this path, which carries this identifier.
  void runsFrom(const std::string& app, const std::string& identifier = "studio.pell.Tamo");
  /// The definition that the running bundle holds under a label.
  void defines(const std::string& label);
  /// The Core is gone as soon as it is asked to stop.
  void coreIsGone() { fakes.kernelProcesses.processes.erase(corePid); }
  void bundle(const std::string& path, const std::string& identifier, const std::string& build = "4211");

  [[nodiscard]] std::vector<std::string> logLines() const { return fakes.ledger.textsOf({"log: "}); }
  /// The receipt below the real home; empty when there is none.
  [[nodiscard]] std::string receipt() const;

  fakes::FakePlatform fakes;
  TamoCoreConfig config;

 private:
  void settle();
};

}  // namespace tamo
