#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fakes/fake_platform.hpp"
#include "launch/launchctl.hpp"

namespace tamo {

/// A platform of fakes with a Launchctl on it, and builders for what launchctl prints. This process is 900, of
/// the group 77.
struct LaunchRig : fakes::FakePlatform {
  LaunchRig() { kernelProcesses.group = 77; }

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

/// A tool that answers as a test says at each question, and keeps what it was asked.
struct PlayedTool {
  std::function<bool()> running = [] { return false; };
  std::int32_t status = 0;
  std::vector<std::string> asked;
};

/// Starts the played tool, which outlives it, whatever is launched, and keeps the last launch.
class StartsPlayedTool final : public platform::Processes {
 public:
  explicit StartsPlayedTool(PlayedTool& played) : played_(played) {}
  platform::ToolLaunch launched;

  [[nodiscard]] std::unique_ptr<platform::Tool> start(const platform::ToolLaunch& launch) override {
    launched = launch;
    return std::make_unique<Player>(played_);
  }

 private:
  class Player final : public platform::Tool {
   public:
    explicit Player(PlayedTool& played) : played_(played) {}
    [[nodiscard]] bool running() override {
      note("running?");
      return played_.running();
    }
    [[nodiscard]] std::int32_t wait() override {
      note("wait");
      return played_.status;
    }
    void terminate() override { note("terminate"); }
    [[nodiscard]] std::string readErrors(std::size_t /*limit*/) override {
      note("read errors");
      return "";
    }

   private:
    void note(const char* question) { played_.asked.emplace_back(question); }
    PlayedTool& played_;
  };

  PlayedTool& played_;
};

/// A user of any number.
class NumberedUser final : public platform::User {
 public:
  std::uint32_t number = 501;
  [[nodiscard]] std::uint32_t realUserID() const override { return number; }
  [[nodiscard]] std::optional<platform::PasswordEntry> passwordEntry() const override { return std::nullopt; }
};

}  // namespace tamo
