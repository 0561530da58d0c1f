#include "companion.hpp"

#include <utility>

namespace tamo {
namespace {

const std::string agentPlist = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>ProgramArguments</key><array><string>/core</string><string>--serve</string></array>
<key>ExitTimeOut</key><integer>20</integer>
</dict></plist>
)";

}  // namespace

Companion::Companion() {
  fakes.agentServices.status = 1;
  bundle("/Applications/Tamo.app", "studio.pell.Tamo");
  bundle(fakes.bundles.mainBundle, "studio.pell.Tamo.Core");
  fakes.files
      .contents[fakes.bundles.mainBundle + "/Contents/Library/LaunchAgents/studio.pell.tamo.core.plist"] =
      agentPlist;
  fakes.kernelProcesses.processes[corePid] = {.startSeconds = 100, .startMicroseconds = 0, .group = corePid};
  fakes.kernelProcesses.processes[fakes.kernelProcesses.pid] = {
      .startSeconds = 200, .startMicroseconds = 0, .group = 900};
  fakes.kernelProcesses.onKillGroup = [this](std::int32_t group) {
    fakes.kernelProcesses.processes.erase(group);
  };
}

void Companion::bundle(const std::string& path, const std::string& identifier, const std::string& build) {
  fakes.files.contents[path + "/Contents/Info.plist"] =
      R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict><key>CFBundleIdentifier</key><string>)" +
      identifier + "</string><key>CFBundleVersion</key><string>" + build + "</string></dict></plist>";
}

std::string Companion::print(bool running, const std::string& exitTimeout) {
  return target +
         " = {\n\tactive count = 1\n\n\targuments = {\n\t\t/core\n\t\t--serve\n\t}\n\n\texit timeout = " +
         exitTimeout + "\n" + (running ? "\tpid = 4242\n" : "") + "}\n";
}

void Companion::kickstartGives(std::int32_t status) {
  fakes.processes.once({"/bin/launchctl", "kickstart"}, {.status = status});
}

void Companion::toolsMove() {
  fakes.processes.always({"/usr/bin/ditto"}, {});
  fakes.processes.always({"/usr/bin/xattr"}, {});
}

void Companion::run(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "/program");
  CoreDelegate delegate(fakes.platform, config, std::move(arguments));
  delegate.applicationDidFinishLaunching();
  fakes.mainQueue.runUntilIdle();
  while (!fakes.threads.waiting.empty()) {
    fakes.threads.runAll();
    fakes.mainQueue.runUntilIdle();
  }
}

}  // namespace tamo
