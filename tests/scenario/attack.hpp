#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/descriptor.hpp"
#include "platform/stage/stage_files.hpp"
#include "platform/stage/stage_root.hpp"

/// What another program of the same user can lay in the way, on the real disk of a stage.
namespace tamo::scenario {

/// What somebody lays at a path, in place of what is there. `Victim` below it is what must not come to harm.
enum class Trap { Link, DanglingLink, HardLink, Pipe, HeldPipe, Folder, FolderWithLink, OtherFile, Nothing };

inline const std::vector<Trap> everyTrap{Trap::Link,           Trap::DanglingLink, Trap::HardLink,
                                         Trap::Pipe,           Trap::HeldPipe,     Trap::Folder,
                                         Trap::FolderWithLink, Trap::OtherFile,    Trap::Nothing};
[[nodiscard]] std::string nameOf(Trap trap);

/// Somebody's file and folder, elsewhere on the stage, and the traps that lead to them.
class Victim {
 public:
  explicit Victim(const stage::StageRoot& root);

  /// Lays the trap at a stage path whose folder exists. What a held pipe is held by lives as long as this.
  void lay(Trap trap, const std::string& path);
  /// Whether the file and the folder are as they were, and nothing was made where a dangling link leads.
  [[nodiscard]] bool isUnharmed() const;
  /// The stage path of the folder, and of the file in it.
  static inline const std::string folder = "/Users/tamo/Documents";
  static inline const std::string file = folder + "/letter";

 private:
  const stage::StageRoot& root_;
  std::vector<platform::Descriptor> held_;
};

/// The stage's files, with somebody who gets a turn before each call, and after some.
class AttackedFiles final : public platform::Files {
 public:
  using Turn = std::function<void(std::string_view moment, const std::string& path)>;
  AttackedFiles(const stage::StageRoot& root, Turn turn) : files_(root), turn_(std::move(turn)) {}

  [[nodiscard]] bool exists(const std::string& path) const override;
  [[nodiscard]] std::optional<std::string> readWhole(const std::string& path) const override;
  [[nodiscard]] std::string resolvedPath(const std::string& path) const override;
  [[nodiscard]] bool writeAtomically(const std::string& path, std::string_view bytes) override;
  [[nodiscard]] bool createDirectories(const std::string& path) override;
  bool remove(const std::string& path) override;
  [[nodiscard]] std::unique_ptr<platform::OutputFile> openForWriting(const std::string& path) override;
  [[nodiscard]] std::optional<std::string> temporaryDirectory() const override {
    return files_.temporaryDirectory();
  }

 private:
  stage::StageFiles files_;
  Turn turn_;
};

}  // namespace tamo::scenario
