#include <algorithm>

#include "exhaustion/print_lines.hpp"
#include "fuzz/insist.hpp"
#include "fuzz/target.hpp"
#include "move/app_move.hpp"
#include "platform/bundle_info.hpp"

/// The build number of a bundle: of any bytes as its Info.plist, and of any text as its version.
namespace tamo::fuzz {
namespace {

/// Has one file.
class OneFile : public platform::FileReader {
 public:
  OneFile(std::string path, std::string_view bytes) : path_(std::move(path)), bytes_(bytes) {}

  [[nodiscard]] bool exists(const std::string& path) const override { return path == path_; }
  [[nodiscard]] std::optional<std::string> readWhole(const std::string& path) const override {
    if (path != path_) return std::nullopt;
    return std::string(bytes_);
  }
  [[nodiscard]] std::string resolvedPath(const std::string& path) const override { return path; }

 private:
  std::string path_;
  std::string_view bytes_;
};

/// The first piece between dots that is not empty, as a number.
std::optional<std::int64_t> describedBuild(std::string_view version) {
  for (std::size_t start = 0; start <= version.size();) {
    const auto end = std::min(version.find('.', start), version.size());
    if (end > start) return exhaustion::describedInt64(version.substr(start, end - start));
    start = end + 1;
  }
  return std::nullopt;
}

}  // namespace

void readInput(std::string_view bytes) {
  insist(AppMove::buildNumber(bytes) == describedBuild(bytes), "the build number is the one described");

  const OneFile files("/Downloads/Tamo.app/Contents/Info.plist", bytes);
  insist(!AppMove::build(files, "/Applications/Tamo.app"), "a missing bundle has no build");
  const auto version = platform::bundleText(files, "/Downloads/Tamo.app", "CFBundleVersion");
  // To read the list once more would say nothing new where it has no version, which is nearly always.
  if (!version) return;
  insist(AppMove::build(files, "/Downloads/Tamo.app") == describedBuild(*version),
         "the build is that of the version");
}

}  // namespace tamo::fuzz
