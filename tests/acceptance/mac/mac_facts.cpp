#include <array>
#include <sys/utsname.h>
#include <unistd.h>
#include <utility>

#include "acceptance/child.hpp"
#include "acceptance/identity.hpp"
#include "acceptance/mac/mac_place.hpp"
#include "acceptance/mac/signers.hpp"

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

/// Of the certificate with that name.
std::string subjectOf(const std::string& name) {
  constexpr auto script =
      "/usr/bin/security find-certificate -c \"$0\" -p | /usr/bin/openssl x509 -noout -subject";
  return said({"/bin/sh", "-c", script, name});
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
  const auto signers = identitiesMeant(
      said({"/usr/bin/security", "find-identity", "-v", "-p", "codesigning"}), settings.identity);
  for (auto& secret : signersOf(signers))
    secrets.push_back(std::move(secret));
  for (const auto& name : signers)
    secrets.push_back({teamOfSubject(subjectOf(name)), "(team)"});
  return secrets;
}

}  // namespace tamo::acceptance
