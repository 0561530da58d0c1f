#include "move/bundle_copy.hpp"

#include "move/app_move.hpp"
#include "values/paths.hpp"

namespace tamo {
namespace {

/// The paths come in as arguments and are quoted by the interpreter, so no name of a file is ever read as a
/// part of the script or of the shell's command.
constexpr std::string_view script =
    R"(do shell script ("/usr/bin/ditto " & quoted form of item 1 of argv & " " & )"
    R"(quoted form of item 2 of argv & " && /usr/bin/xattr -dr com.apple.quarantine " & )"
    R"(quoted form of item 2 of argv) )"
    R"(with prompt "Tamo wants to move itself into your Applications folder." )"
    R"(with administrator privileges)";
static_assert(script.size() == 287);

/// The number of the error that the script interpreter reports for a prompt which the user closed.
constexpr std::string_view userCancelled = "-128";

}  // namespace

std::string_view BundleCopy::copy(const std::string& source, const std::string& to) {
  if (copiedPlainly(source, to)) return AppMove::Code::moved;
  needs_.files.remove(to);
  // Where the user may write, it was not the rights that failed, and the administrator's would not help.
  const std::string folder(values::parentPath(to));
  if (needs_.userFiles.isWritable(folder)) return AppMove::Code::copyFailed;
  return copyAsAdministrator(source, to);
}

bool BundleCopy::copiedPlainly(const std::string& source, const std::string& to) {
  std::string errors;
  if (needs_.runner.run("/usr/bin/ditto", {source, to}, errors) != 0) return false;
  // A copy that keeps the mark is still a copy: the system asks once more when it is opened.
  static_cast<void>(needs_.runner.run("/usr/bin/xattr", {"-dr", "com.apple.quarantine", to}, errors));
  return true;
}

std::string_view BundleCopy::copyAsAdministrator(const std::string& source, const std::string& to) {
  std::string errors;
  const auto status = needs_.runner.run(
      "/usr/bin/osascript", {"-e", "on run argv", "-e", std::string(script), "-e", "end run", source, to},
      errors);
  if (status == 0) return AppMove::Code::moved;
  needs_.files.remove(to);
  return errors.contains(userCancelled) ? AppMove::Code::cancelled : AppMove::Code::notWritable;
}

}  // namespace tamo
