#include "stage/common/rights.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "stage/common/stage_error.hpp"

namespace tamo::stage {
namespace {

namespace fs = std::filesystem;

constexpr uid_t nobody = 65534;

void must(bool done, const std::string& what) {
  if (!done) throw StageError(what + ": " + std::strerror(errno));
}

std::string applications(const StageRoot& root) {
  const auto folder = root.existing("/Applications");
  if (!folder) throw StageError("there is no /Applications on the stage");
  return *folder;
}

}  // namespace

/// Root may write anywhere, so for root it is another user's folder, which the renounced rights then keep it out of.
/// An ordinary user can give nothing away, so there the mode alone keeps the owner out.
void closeApplications(const StageRoot& root) {
  const auto folder = applications(root);
  const bool byRoot = ::geteuid() == 0;
  if (byRoot) must(::chown(folder.c_str(), nobody, nobody) == 0, "cannot give /Applications away");
  must(::chmod(folder.c_str(), byRoot ? 0755 : 0555) == 0, "cannot close /Applications");
}

/// An ordinary user has owned the folder all the while.
void openApplications(const StageRoot& root) {
  const auto folder = applications(root);
  if (::geteuid() == 0)
    must(::chown(folder.c_str(), ::geteuid(), ::getegid()) == 0, "cannot take /Applications back");
  must(::chmod(folder.c_str(), 0755) == 0, "cannot open /Applications");
}

void chooseAdministrator(const StageRoot& root, const std::string& answer) {
  const fs::path program = root.host("/usr/bin/osascript");
  const fs::path away = root.control("osascript-put-away");
  const bool isAway = fs::exists(away);
  std::error_code error;
  if (answer == "not-there" && !isAway) fs::rename(program, away, error);
  if (answer != "not-there" && isAway) fs::rename(away, program, error);
  if (error) throw StageError("cannot put osascript away or back: " + error.message());
  // Last, so that the setting never claims what could not be brought about.
  root.set("administrator", answer);
}

}  // namespace tamo::stage
