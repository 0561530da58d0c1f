#include <array>
#include <sys/utsname.h>
#include <unistd.h>

#include "acceptance/child.hpp"
#include "acceptance/identity.hpp"
#include "acceptance/mac/mac_place.hpp"

namespace tamo::acceptance {
namespace {

std::string said(const std::vector<std::string>& words) {
  auto text = runProgram({.words = words}).text;
  while (text.ends_with('\n'))
    text.pop_back();
  return text;
}

std::string serial() {
  constexpr std::string_view name = "\"IOPlatformSerialNumber\" = \"";
  const auto text = said({"/usr/sbin/ioreg", "-rd1", "-c", "IOPlatformExpertDevice"});
  const auto at = text.find(name);
  if (at == std::string::npos) return "";
  const auto begin = at + name.size();
  return text.substr(begin, text.find('"', begin) - begin);
}

/// "Developer ID Application: NAME (TEAM)" names a person and a team.
void addSigner(std::vector<Secret>& secrets, const std::string& identity) {
  if (identity == "-") return;
  secrets.push_back({identity, "(identity)"});
  const auto colon = identity.find(": ");
  const auto open = identity.rfind(" (");
  if (open == std::string::npos || !identity.ends_with(')')) return;
  secrets.push_back({identity.substr(open + 2, identity.size() - open - 3), "(team)"});
  if (colon < open) secrets.push_back({identity.substr(colon + 2, open - colon - 2), "(signer)"});
}

}  // namespace

PlaceFacts macFacts(const MacSettings& settings) {
  utsname system{};
  ::uname(&system);
  return {.kind = "Mac",
          .system = "macOS " + said({"/usr/bin/sw_vers", "-productVersion"}) + " (" +
                    said({"/usr/bin/sw_vers", "-buildVersion"}) + ")",
          .processor = system.machine,
          .signature = !settings.isSample()       ? "as the given Tamo.app has it"
                       : settings.identity == "-" ? "ad hoc"
                                                  : "a real identity"};
}

std::vector<Secret> macSecrets(const MacSettings& settings) {
  auto identity = identityOfThisProcess();
  identity.hostNames.push_back(said({"/usr/sbin/scutil", "--get", "ComputerName"}));
  identity.hostNames.push_back(said({"/usr/sbin/scutil", "--get", "LocalHostName"}));
  identity.serial = serial();
  std::array<char, 1024> temporary{};
  if (::confstr(_CS_DARWIN_USER_TEMP_DIR, temporary.data(), temporary.size()) > 0)
    identity.temporary = temporary.data();
  auto secrets = secretsOf(identity);
  addSigner(secrets, settings.identity);
  return secrets;
}

}  // namespace tamo::acceptance
