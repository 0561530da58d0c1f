#include "stage/tools/xattr.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <sys/xattr.h>

#include "stage/common/exit_status.hpp"
#include "stage/common/tool_fault.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;

/// Linux keeps what users may set in a space of its own. A Mac has no spaces, so its names go without.
constexpr std::string_view userSpace = "user.";

/// The attributes of one item that users may set, by the names of a Mac; none when they cannot be read.
std::vector<std::string> attributesOf(const std::string& path) {
  // As much as the kernel keeps of names for one item.
  std::string names(65536, '\0');
  const auto size = ::llistxattr(path.c_str(), names.data(), names.size());
  names.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
  std::vector<std::string> found;
  for (std::size_t start = 0; start < names.size();) {
    const std::string name = names.c_str() + start;
    if (name.starts_with(userSpace)) found.push_back(name.substr(userSpace.size()));
    start += name.size() + 1;
  }
  return found;
}

/// One path after the other: a fault of one is told, and keeps none of the others from being done.
class Work {
 public:
  Work(const StageRoot& root, XattrUse use) : root_(root), use_(std::move(use)) {}

  int run() {
    for (const auto& path : use_.paths)
      visitAll(path);
    return failed_ ? kFailed : 0;
  }

 private:
  /// A link on the way down is passed over: what it leads to is not below the item.
  void visitAll(const std::string& path) {
    const auto item = root_.existing(path);
    if (!item) return fail(path, "No such file: " + path);
    visit(*item, true);
    if (!use_.recursive || !fs::is_directory(*item)) return;
    std::error_code error;
    fs::recursive_directory_iterator below(*item, error);
    for (const fs::recursive_directory_iterator end; !error && below != end; below.increment(error))
      if (!below->is_symlink()) visit(below->path().string(), false);
    if (error) fail(path, error.message());
  }

  /// What is printed has the stage's own paths, since whoever asked knows no others.
  void visit(const std::string& item, bool named) {
    const auto path = root_.onStage(item).value_or(item);
    if (!use_.deleted) {
      for (const auto& name : attributesOf(item))
        std::cout << path << ": " << name << "\n";
      return;
    }
    const bool deleted = ::lremovexattr(item.c_str(), attributeOnDisk(*use_.deleted).c_str()) == 0;
    // Of a whole tree most items have no such mark, so that is an error of a single item alone.
    const bool missing = !deleted && errno == ENODATA;
    if (missing && named && !use_.recursive) return fail(path, "No such xattr: " + *use_.deleted);
    if (!deleted && !missing) fail(path, std::strerror(errno));
  }

  void fail(const std::string& path, const std::string& why) {
    std::cerr << "xattr: " << path << ": " << why << "\n";
    failed_ = true;
  }

  const StageRoot& root_;
  XattrUse use_;
  bool failed_ = false;
};

}  // namespace

std::string attributeOnDisk(const std::string& name) {
  return std::string(userSpace) + name;
}

std::optional<XattrUse> xattrUse(const std::vector<std::string>& arguments) {
  XattrUse use;
  bool deletes = false;
  std::size_t next = 0;
  for (; next < arguments.size() && arguments[next].starts_with("-"); ++next) {
    const auto letters = arguments[next].substr(1);
    if (letters.empty() || letters.find_first_not_of("dr") != std::string::npos) return std::nullopt;
    deletes = deletes || letters.contains('d');
    use.recursive = use.recursive || letters.contains('r');
  }
  if (deletes && next < arguments.size()) use.deleted = arguments[next++];
  use.paths.assign(arguments.begin() + static_cast<std::ptrdiff_t>(next), arguments.end());
  if (use.paths.empty() || (use.deleted && use.deleted->empty())) return std::nullopt;
  return use;
}

int runXattr(const StageRoot& root, const std::vector<std::string>& arguments) {
  if (const auto status = sufferFault(root, "xattr", actingUser())) return *status;
  auto use = xattrUse(arguments);
  if (!use) {
    std::cerr << "Usage: xattr [-r] <path>… | xattr -d [-r] <attribute> <path>…\n";
    return kUsage;
  }
  return Work(root, *std::move(use)).run();
}

}  // namespace tamo::stage
