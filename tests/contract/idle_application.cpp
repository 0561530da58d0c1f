#include "contract/idle_application.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace tamo::contract {
namespace {

namespace fs = std::filesystem;

bool isNumber(const std::string& text) {
  return !text.empty() && std::ranges::all_of(text, [](char digit) { return digit >= '0' && digit <= '9'; });
}

}  // namespace

std::string layIdleApplication(const std::string& bundle, const std::string& identifier) {
  const fs::path contents = fs::path(bundle) / "Contents";
  fs::create_directories(contents / "MacOS");
  fs::copy_file(TAMO_BINARY_DIR "/bin/stage-app", contents / "MacOS/Idle");
  std::ofstream(contents / "Info.plist")
      << "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>" << identifier
      << "</string><key>CFBundleExecutable</key><string>Idle</string></dict></plist>";
  return bundle;
}

std::vector<pid_t> pidsOf(const std::string& bundle) {
  std::vector<pid_t> pids;
  for (const auto& item : fs::directory_iterator("/proc")) {
    std::error_code hidden;
    const auto program = fs::read_symlink(item.path() / "exe", hidden);
    const auto name = item.path().filename().string();
    if (!hidden && isNumber(name) && program.string().starts_with(bundle + "/"))
      pids.push_back(std::stoi(name));
  }
  return pids;
}

}  // namespace tamo::contract
