#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>

#include "platform/stage/launchd_wire.hpp"
#include "stage/common/stage_census.hpp"
#include "stage/common/stage_error.hpp"
#include "stage/common/stage_presence.hpp"
#include "stage/control/log_view.hpp"
#include "stage/control/stage_commands.hpp"
#include "stage/control/stage_layout.hpp"
#include "stage/launchd/service_records.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;

void printFile(const fs::path& path) {
  const std::ifstream file(path, std::ios::binary);
  std::cout << file.rdbuf();
}

/// The names in a folder, sorted; without those that are being replaced at this moment.
std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code none;
  for (const auto& item : fs::directory_iterator(folder, none))
    if (const auto name = item.path().filename().string(); !name.starts_with(".")) names.push_back(name);
  std::ranges::sort(names);
  return names;
}

/// In the order of service management's own numbers.
std::string statusName(std::int32_t status) {
  static constexpr const char* names[] = {"not registered", "enabled", "requires approval", "not found"};
  return status >= 0 && status <= 3 ? names[status] : "?";
}

/// A stage whose launchd was killed can be looked at all the same, so a missing answer is told and stops nothing.
void showJobs(const StageRoot& root) {
  const auto answer = askLaunchd(root, {"print", "gui/" + std::to_string(root.userID())});
  std::cout << (answer ? answer->output : "launchd doesn't answer\n");
}

void showServices(const StageRoot& root) {
  std::cout << "\nservices\n";
  for (const auto& name : recordedServices(root)) {
    const auto record = readRecord(root, name);
    if (record)
      std::cout << "  " << name << ": " << record->status << " " << statusName(record->status) << ", from "
                << record->bundle << "\n";
  }
}

int status(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  arguments.finish();
  std::cout << "stage " << root.directory() << ", user " << root.userID() << ", home " << root.home()
            << "\n\n";
  showJobs(root);
  showServices(root);
  std::cout << "\nprocesses\n";
  for (const auto& process : processesOfStage(root.directory()))
    std::cout << "  " << process.pid << " group " << process.group << " " << process.state << " "
              << process.command << "\n";
  std::cout << "\nsettings\n";
  for (const auto& name : namesIn(root.control("settings")))
    std::cout << "  " << name << " = " << root.setting(name, "") << "\n";
  return 0;
}

/// One a line and nothing beside it, because scripts read it.
int ps(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  arguments.finish();
  for (const auto& process : processesOfStage(root.directory()))
    std::cout << process.pid << "\n";
  return 0;
}

int log(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto view = arguments.takeFlag("--marks") ? LogView::Marks : LogView::Plain;
  const bool follow = arguments.takeFlag("--follow");
  arguments.finish();
  // A stage that is struck while its log is followed ends that.
  const StagePresence presence(root.directory());
  LogReader reader(root.control("log"));
  // Whoever follows through a pipe ends it by closing that.
  do {
    for (const auto& line : reader.newLines())
      std::cout << viewedLine(line, view) << "\n";
    std::cout << std::flush;
    if (follow) std::this_thread::sleep_for(std::chrono::milliseconds(100));
  } while (follow && presence.isThere() && std::cout);
  return 0;
}

int receipt(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto pid = arguments.takeAny();
  arguments.finish();
  if (pid) static_cast<void>(wholeNumber(*pid, "pid"));
  // In the real home, wherever a test build has its data.
  const auto folder = root.host(root.home() + "/Library/Application Support/TamoPKG1/M2");
  bool any = false;
  for (const auto& name : namesIn(folder)) {
    if (pid && name != *pid + "-core.json") continue;
    printFile(fs::path(folder) / name);
    std::cout << "\n";
    any = true;
  }
  if (!any) throw StageError(pid ? "no receipt of the process " + *pid : "no receipts");
  return 0;
}

}  // namespace

std::vector<StageCommand> viewCommands() {
  return {{"status", "R", "jobs, registrations, processes and settings", status},
          {"ps", "R", "the pids of all processes of the stage", ps},
          {"log", "R [--marks] [--follow]", "the companion's log lines, shown or with their marks", log},
          {"receipt", "R [PID]", "the receipts that companions have written", receipt}};
}

}  // namespace tamo::stage
