#include "platform/posix/posix_user.hpp"

#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace tamo::platform {

/// An entry without a home is not the same as no entry: the first is a fault of the machine's.
std::optional<PasswordEntry> passwordEntryFrom(const passwd* found) {
  if (found == nullptr) return std::nullopt;
  if (found->pw_dir == nullptr) return PasswordEntry{};
  return PasswordEntry{.home = found->pw_dir};
}

std::uint32_t PosixUser::realUserID() const {
  return ::getuid();
}

std::optional<PasswordEntry> PosixUser::passwordEntry() const {
  // The texts of an entry lie in a buffer of the caller's, whose size the database tells only by refusing.
  constexpr std::size_t largest = std::size_t{1} << 20U;
  for (std::size_t size = 4096; size <= largest; size *= 2) {
    std::vector<char> texts(size);
    passwd entry{};
    passwd* found = nullptr;
    const int failure = ::getpwuid_r(::getuid(), &entry, texts.data(), texts.size(), &found);
    if (failure == ERANGE) continue;
    return passwordEntryFrom(failure == 0 ? found : nullptr);
  }
  return std::nullopt;
}

}  // namespace tamo::platform
