#pragma once

#include <string>
#include <string_view>

#include "platform/stage/stage_root.hpp"

namespace tamo::contract {

/// A small stage in a folder of its own on the host's temporary directory: the folders that the adapters look
/// for, "/tmp" as a link to "/private/tmp", and the host's shell as "/bin/sh". Nothing runs on it. Destroying
/// it removes it.
class TemporaryStage {
 public:
  TemporaryStage();
  TemporaryStage(const TemporaryStage&) = delete;
  TemporaryStage& operator=(const TemporaryStage&) = delete;
  ~TemporaryStage();

  [[nodiscard]] const stage::StageRoot& root() const { return root_; }

  /// Lay an item on the stage; the folder of a file or link is made as well. Links are as their text says.
  void folder(std::string_view path) const;
  void file(std::string_view path, std::string_view bytes) const;
  void link(std::string_view path, std::string_view target) const;

 private:
  stage::StageRoot root_;
};

/// The bytes of a host file; empty when there is none.
[[nodiscard]] std::string hostBytes(const std::string& path);

}  // namespace tamo::contract
