#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <libproc.h>
#include <memory>

#include "contract/idle_application.hpp"

namespace tamo::contract {
namespace {

namespace fs = std::filesystem;

/// Programs are known to the kernel by their path without links.
std::string withoutLinks(const std::string& path) {
  std::error_code missing;
  const auto found = fs::canonical(path, missing);
  return missing ? path : found.string();
}

std::vector<pid_t> allPids() {
  // Room for those that begin between the two questions.
  std::vector<pid_t> pids(static_cast<std::size_t>(::proc_listallpids(nullptr, 0)) + 64);
  const int count = ::proc_listallpids(pids.data(), static_cast<int>(pids.size() * sizeof(pid_t)));
  pids.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
  return pids;
}

std::string programOf(pid_t pid) {
  std::string path(PROC_PIDPATHINFO_MAXSIZE, '\0');
  const int size = ::proc_pidpath(pid, path.data(), static_cast<std::uint32_t>(path.size()));
  path.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
  return path;
}

}  // namespace

std::string layIdleApplication(const std::string& bundle, const std::string& identifier) {
  const fs::path contents = fs::path(bundle) / "Contents";
  fs::create_directories(contents / "MacOS");
  fs::copy_file(TAMO_BINARY_DIR "/bin/idle-application", contents / "MacOS/Idle");
  std::ofstream(contents / "Info.plist")
      << "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>" << identifier
      << "</string><key>CFBundleExecutable</key><string>Idle</string><key>CFBundlePackageType</key>"
         "<string>APPL</string><key>NSPrincipalClass</key><string>NSApplication</string></dict></plist>";
  return bundle;
}

std::vector<pid_t> pidsOf(const std::string& bundle) {
  const auto start = withoutLinks(bundle) + "/";
  auto pids = allPids();
  std::erase_if(pids, [&start](pid_t pid) { return !programOf(pid).starts_with(start); });
  return pids;
}

}  // namespace tamo::contract
