#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fakes/fake_platform.hpp"
#include "launch/launchctl.hpp"

namespace tamo {

/// A platform of fakes with a Launchctl on it, and builders for what launchctl prints.
struct LaunchRig : fakes::FakePlatform {
  inline static const std::string label = "studio.pell.tamo.core";
  inline static const std::string target = "gui/501/studio.pell.tamo.core";
  inline static const std::string printFile = "/tmp/of-the-user/tamo-core-print-900.txt";

  Launchctl launchctl{{.processes = processes,
                       .files = files,
                       .clock = clock,
                       .kernelProcesses = kernelProcesses,
                       .user = user,
                       .label = label}};

  /// Arranges the next print of the job.
  void printOnce(fakes::ToolScript script) {
    processes.once({"/bin/launchctl", "print", target}, std::move(script));
  }
  void printTextOnce(const std::string& text) { printOnce({.output = text}); }

  [[nodiscard]] std::chrono::nanoseconds now() const { return clock.monotonicNow(); }
};

/// A print of the job with these lines in its own block.
inline std::string printOf(const std::string& lines) {
  return LaunchRig::target + " = {\n" + lines + "}\n";
}

/// A property list with these entries in its dictionary.
inline std::string plistOf(const std::string& entries) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries +
         "</dict></plist>\n";
}

/// Forwards, and keeps what was asked for.
class KeepsLaunches final : public platform::Processes {
 public:
  explicit KeepsLaunches(platform::Processes& processes) : processes_(processes) {}
  std::vector<platform::ToolLaunch> launches;

  [[nodiscard]] std::unique_ptr<platform::Tool> start(const platform::ToolLaunch& launch) override {
    launches.push_back(launch);
    return processes_.start(launch);
  }

 private:
  platform::Processes& processes_;
};

}  // namespace tamo
