#include "platform/stage/stage_user_files.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_files.hpp"
#include "values/paths.hpp"

namespace tamo::stage {
namespace {

/// More items of one name than this go to nobody's Trash within a second.
constexpr int mostAttempts = 1000;

std::string timeOfDay(std::chrono::system_clock::time_point moment) {
  const auto seconds = std::chrono::system_clock::to_time_t(moment);
  tm parts{};
  ::localtime_r(&seconds, &parts);
  std::array<char, 16> text{};
  std::strftime(text.data(), text.size(), "%H.%M.%S", &parts);
  return text.data();
}

/// Moves an item to a place that must be free. 0, or why it stays. In one call, because between a look and a move
/// another item could come to have the name. An item of another volume is not copied: the call fails, and it stays
/// where it is.
int failureOfMove(const std::string& from, const std::string& to) {
  return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0 ? 0 : errno;
}

}  // namespace

std::string nameInTrash(const std::string& name, const std::string& timeOfDay, int attempt) {
  const auto dot = name.rfind('.');
  // A name that begins with its only dot has no ending.
  const auto stem = dot == std::string::npos || dot == 0 ? name.size() : dot;
  auto result = name.substr(0, stem);
  result.append(" ").append(timeOfDay);
  if (attempt > 1) result.append(" ").append(std::to_string(attempt));
  return result.append(name, stem);
}

/// Links are followed, and into what is missing nobody may write: a Mac answers the same.
bool StageUserFiles::isWritable(const std::string& path) const {
  const auto item = root_.existing(path);
  return item && platform::posix::isWritable(*item);
}

bool StageUserFiles::moveToTrash(const std::string& path) {
  const auto item = root_.entry(path);
  const auto trash = root_.entry(values::joinedPath(root_.home(), ".Trash"));
  if (!item || !trash) return false;
  // One that is there already, or cannot be made, shows in the move.
  static_cast<void>(::mkdir(trash->c_str(), 0700));
  const std::string name(values::lastComponent(*item));
  int failure = failureOfMove(*item, values::joinedPath(*trash, name));
  const auto time = timeOfDay(clock_.wallNow());
  for (int attempt = 1; failure == EEXIST && attempt <= mostAttempts; ++attempt)
    failure = failureOfMove(*item, values::joinedPath(*trash, nameInTrash(name, time, attempt)));
  return failure == 0;
}

}  // namespace tamo::stage
