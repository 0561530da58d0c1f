#include "app/data_directory.hpp"

#include "values/fatal.hpp"

namespace tamo {
namespace {

/// Without a home every path would begin at the root, and the data would be looked for, and written, in the
/// wrong place.
std::string homeOf(const platform::PasswordEntry& entry) {
  if (!entry.home) values::fatal("the user's password entry has no home directory");
  return *entry.home;
}

}  // namespace

/// No entry is an answer: there is no data of a user whom nobody knows.
std::optional<std::string> dataDirectory(const platform::User& user, const TamoCoreConfig& config) {
  const auto entry = user.passwordEntry();
  if (!entry) return std::nullopt;
  const auto home = config.proofHome ? std::string(*config.proofHome) : homeOf(*entry);
  return home + "/Library/Application Support/Tamo/";
}

std::string passwordHome(const platform::User& user) {
  const auto entry = user.passwordEntry();
  if (!entry) values::fatal("the user has no password entry");
  return homeOf(*entry);
}

}  // namespace tamo
