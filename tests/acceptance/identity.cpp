#include "acceptance/identity.hpp"

#include <array>
#include <pwd.h>
#include <unistd.h>

namespace tamo::acceptance {

Identity identityOfThisProcess() {
  Identity identity;
  std::array<char, 256> host{};
  if (::gethostname(host.data(), host.size() - 1) == 0) identity.hostNames.emplace_back(host.data());
  const auto* entry = ::getpwuid(::getuid());
  if (entry == nullptr) return identity;
  const std::string names = entry->pw_gecos;
  identity.home = entry->pw_dir;
  identity.userName = entry->pw_name;
  identity.fullName = names.substr(0, names.find(','));
  return identity;
}

}  // namespace tamo::acceptance
