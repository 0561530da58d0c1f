#include "platform/stage/stage_bundles.hpp"

#include <filesystem>
#include <string_view>
#include <sys/auxv.h>

#include "platform/posix/posix_files.hpp"
#include "values/fatal.hpp"
#include "values/paths.hpp"
#include "values/text.hpp"

namespace tamo::stage {

/// Not where /proc/self/exe leads: there every link is resolved, and the guard has to see the link that a copy was
/// reached by.
std::string executableAsLaunched() {
  // The auxiliary vector holds the number of an address. NOLINTNEXTLINE(performance-no-int-to-ptr)
  const auto* path = reinterpret_cast<const char*>(::getauxval(AT_EXECFN));
  if (path == nullptr) values::fatal("the kernel does not tell how this process was started");
  return *path == '/' ? path : values::joinedPath(std::filesystem::current_path().string(), path);
}

/// An executable outside any bundle has its folder for a bundle, as on a Mac.
std::string bundleOf(const std::string& executable) {
  constexpr std::string_view inside = "/Contents/MacOS";
  const auto folder = values::parentPath(executable);
  if (folder.size() <= inside.size() || !folder.ends_with(inside)) return std::string(folder);
  return std::string(folder.substr(0, folder.size() - inside.size()));
}

StageBundles::StageBundles(const StageRoot& root, const std::string& executable) : root_(root) {
  const auto path = root_.onStage(executable);
  if (!path) values::fatal(executable + " does not lie below the stage " + root_.directory());
  mainBundle_ = bundleOf(*path);
}

/// The file plays what only the system knows. It is read at each call, so that the system can forget while a companion
/// runs.
std::optional<std::string> StageBundles::originalLocation(const std::string& appPath) const {
  const auto lines = platform::posix::readWhole(root_.control("translocated")).value_or("");
  const auto start = appPath + "\t";
  for (std::optional<std::string_view> rest(lines); rest;) {
    const auto line = values::takeLine(rest);
    if (line.starts_with(start)) return std::string(line.substr(start.size()));
  }
  return std::nullopt;
}

}  // namespace tamo::stage
