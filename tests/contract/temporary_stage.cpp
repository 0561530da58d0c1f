#include "contract/temporary_stage.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "values/fatal.hpp"

namespace tamo::contract {
namespace {

namespace fs = std::filesystem;

std::string uniqueFolder() {
  std::string name = (fs::temp_directory_path() / "tamo-contract.XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) values::fatal("no folder for a stage can be made");
  return name;
}

}  // namespace

TemporaryStage::TemporaryStage() : root_(uniqueFolder()) {
  folder("/private/tmp");
  folder("/private/var/folders/st/tamo/T");
  folder("/Users/tamo");
  folder("/.stage/settings");
  folder("/bin");
  link("/tmp", "private/tmp");
  link("/var", "private/var");
  fs::copy_file("/bin/sh", root_.host("/bin/sh"));
}

TemporaryStage::~TemporaryStage() {
  std::error_code ignored;
  fs::remove_all(root_.directory(), ignored);
}

void TemporaryStage::folder(std::string_view path) const {
  fs::create_directories(root_.host(path));
}

void TemporaryStage::file(std::string_view path, std::string_view bytes) const {
  const fs::path place = root_.host(path);
  fs::create_directories(place.parent_path());
  std::ofstream(place, std::ios::binary) << bytes;
}

void TemporaryStage::link(std::string_view path, std::string_view target) const {
  const fs::path place = root_.host(path);
  fs::create_directories(place.parent_path());
  fs::create_symlink(target, place);
}

std::string hostBytes(const std::string& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

}  // namespace tamo::contract
