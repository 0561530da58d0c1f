#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fakes/fake_platform.hpp"
#include "move/move_to_applications.hpp"
#include "unit/move/info_files.hpp"

namespace tamo {

/// A release copy, build 42, that runs from Downloads and shows a window, with nothing installed and with
/// tools that do their work. A test changes what it is about and then says move().
struct MoveRig : fakes::FakePlatform {
  using Texts = std::vector<std::string>;

  static inline const std::string downloads = "/Users/u/Downloads/Tamo.app";
  static inline const std::string installed = "/Applications/Tamo.app";
  static inline const std::string translocated = "/private/var/folders/x/T/AppTranslocation/0F-1/d/Tamo.app";
  static inline const std::string container =
      "/Users/u/Library/Containers/studio.pell.Tamo/Data/Library/Application Support/Tamo";
  static inline const std::string resultFile = container + "/move-to-applications.json";

  MoveRig() {
    runsFrom(downloads);
    processes.always({"/usr/bin/ditto"}, {.effect = [this] { place(installed, "42"); }});
    processes.always({"/usr/bin/xattr"}, {});
    ledger.clear();
  }

  void place(const std::string& path, const std::string& build,
             const std::string& identifier = "studio.pell.Tamo") {
    files.directories.insert(path);
    files.contents[path + "/Contents/Info.plist"] =
        infoWith(identifierEntry(identifier) + versionEntry(build));
  }
  void runsFrom(const std::string& path, const std::string& identifier = "studio.pell.Tamo") {
    place(path, "42", identifier);
    bundles.mainBundle = path + "/Contents/Library/LoginItems/Tamo Core.app";
  }
  void runs(const std::string& path) { workspace.running.push_back({"studio.pell.Tamo", path}); }
  void quitsAt(std::chrono::nanoseconds moment) {
    clock.at(moment, [this] { workspace.running.clear(); });
  }
  /// The plain copy fails for want of rights and leaves a part behind.
  void applicationsIsProtected() {
    userFiles.unwritable.insert("/Applications");
    dittoFails();
  }
  void dittoFails() {
    processes.once({"/usr/bin/ditto"}, {.status = 1, .effect = [this] { leavesAPart(); }});
  }
  void administratorSays(std::int32_t status, const std::string& errors = "") {
    processes.once({"/usr/bin/osascript"}, {.status = status, .errors = errors, .effect = [this, status] {
                                              status == 0 ? place(installed, "42") : leavesAPart();
                                            }});
  }
  /// One entry, so that the fake's removal of an entry takes all of it.
  void leavesAPart() { files.contents[installed] = "half a bundle"; }

  /// Goes on until nothing is left to do. Whether the move came to its end.
  bool move() {
    task.emplace(mover.moveToApplications());
    task->start();
    mainQueue.runUntilIdle();
    return task->done();
  }

  /// What was changed or said, in order; looks and waits left out.
  [[nodiscard]] Texts effects() const {
    return ledger.textsOf({"tool: /", "user files: ", "files: remove", "files: create", "files: write",
                           "log: ", "workspace: open"});
  }
  /// What stands in the result file; empty when there is none.
  [[nodiscard]] std::string result() const {
    const auto found = files.contents.find(resultFile);
    return found == files.contents.end() ? "" : found->second;
  }
  [[nodiscard]] std::chrono::nanoseconds openedAt() const {
    for (const auto& entry : ledger.entries()) {
      if (entry.text.starts_with("workspace: open")) return entry.at;
    }
    return std::chrono::nanoseconds(-1);
  }

  std::unique_ptr<platform::Logger> log = logSystem.logger("subsystem", "category");
  MoveToApplications mover{{.processes = processes,
                            .files = files,
                            .userFiles = userFiles,
                            .bundles = bundles,
                            .user = user,
                            .workspace = workspace,
                            .clock = clock,
                            .mainQueue = mainQueue,
                            .log = *log}};
  std::optional<platform::Task<platform::Nothing>> task;
};

}  // namespace tamo
