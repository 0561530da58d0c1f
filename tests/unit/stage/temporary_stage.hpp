#pragma once

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// An empty stage without a launchd, removed with this object.
class TemporaryStage {
 public:
  TemporaryStage() { std::filesystem::create_directories(path + "/.stage/settings"); }
  TemporaryStage(const TemporaryStage&) = delete;
  TemporaryStage& operator=(const TemporaryStage&) = delete;
  ~TemporaryStage() { std::filesystem::remove_all(path); }

  /// Writes a file at a stage path, with the folders above it.
  void write(const std::string& stagePath, const std::string& bytes) const {
    const auto file = path + stagePath;
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
  }

  [[nodiscard]] std::string read(const std::string& stagePath) const {
    std::ostringstream bytes;
    bytes << std::ifstream(path + stagePath, std::ios::binary).rdbuf();
    return bytes.str();
  }

  const std::string path = fresh();
  const StageRoot root{path};

 private:
  static std::string fresh() {
    std::array<char, 32> name = {"/tmp/tamo-stage-test-XXXXXX"};
    return ::mkdtemp(name.data());
  }
};

}  // namespace tamo::stage
