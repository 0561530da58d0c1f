#include "companion.hpp"

#include <stdexcept>
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
  fakes.kernelProcesses.group = 899;
  defines("studio.pell.tamo.core");
  fakes.kernelProcesses.processes[corePid] = {.startSeconds = 100, .startMicroseconds = 0, .group = corePid};
  fakes.kernelProcesses.processes[fakes.kernelProcesses.pid] = {
      .startSeconds = 200, .startMicroseconds = 0, .group = 899};
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

void Companion::runsFrom(const std::string& app, const std::string& identifier) {
  fakes.bundles.mainBundle = app + "/Contents/Library/LoginItems/Tamo Core.app";
  bundle(app, identifier);
}

void Companion::defines(const std::string& label) {
  fakes.files.contents[fakes.bundles.mainBundle + "/Contents/Library/LaunchAgents/" + label + ".plist"] =
      agentPlist;
}

void Companion::toolsMove() {
  fakes.processes.always({"/usr/bin/ditto"}, {});
  fakes.processes.always({"/usr/bin/xattr"}, {});
}

void Companion::run(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "/program");
  CoreDelegate delegate(fakes.platform, config, std::move(arguments));
  delegate.applicationDidFinishLaunching();
  settle();
}

void Companion::perform(const std::string& action) {
  CoreDelegate delegate(fakes.platform, config, {"/program"});
  fakes.ledger.clear();
  auto performing = delegate.perform(action);
  performing.start();
  settle();
  if (!performing.done()) throw std::logic_error("the action still waits");
}

std::string Companion::receipt() const {
  const auto found =
      fakes.files.contents.find("/Users/u/Library/Application Support/TamoPKG1/M2/900-core.json");
  return found == fakes.files.contents.end() ? "" : found->second;
}

void Companion::settle() {
  fakes.mainQueue.runUntilIdle();
  while (!fakes.threads.waiting.empty()) {
    fakes.threads.runAll();
    fakes.mainQueue.runUntilIdle();
  }
}

}  // namespace tamo
