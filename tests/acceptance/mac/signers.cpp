#include "acceptance/mac/signers.hpp"

#include <algorithm>

namespace tamo::acceptance {
namespace {

/// What stands in parentheses behind the signer's name is the team, but for a certificate of development, which has a
/// number of its own there.
std::string whatIsBehind(const std::string& identity) {
  const bool ofDevelopment =
      identity.starts_with("Apple Development") || identity.starts_with("Mac Developer");
  return ofDevelopment ? "(certificate)" : "(team)";
}

void addSigner(std::vector<Secret>& secrets, const std::string& identity) {
  secrets.push_back({identity, "(identity)"});
  const auto colon = identity.find(": ");
  const auto open = identity.rfind(" (");
  if (open == std::string::npos || !identity.ends_with(')')) return;
  secrets.push_back({identity.substr(open + 2, identity.size() - open - 3), whatIsBehind(identity)});
  if (colon < open) secrets.push_back({identity.substr(colon + 2, open - colon - 2), "(signer)"});
}

/// What stands between the first quotation mark of the line and its last.
std::string quoted(std::string_view line) {
  const auto open = line.find('"');
  const auto close = line.rfind('"');
  return open == close ? "" : std::string(line.substr(open + 1, close - open - 1));
}

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

}  // namespace

std::vector<std::string> identitiesMeant(std::string_view identities, const std::string& identity) {
  std::vector<std::string> names;
  if (identity == "-") return names;
  for (const auto line : linesOf(identities))
    if (line.contains(identity) && !quoted(line).empty()) names.push_back(quoted(line));
  names.push_back(identity);
  return names;
}

std::vector<Secret> signersOf(const std::vector<std::string>& names) {
  std::vector<Secret> secrets;
  for (const auto& name : names)
    addSigner(secrets, name);
  return secrets;
}

std::string teamOfSubject(std::string_view subject) {
  constexpr std::string_view name = "OU";
  for (auto at = subject.find(name); at != std::string_view::npos; at = subject.find(name, at + 1)) {
    const bool begins = at > 0 && std::string_view("/, =").contains(subject[at - 1]);
    auto rest = subject.substr(at + name.size());
    const auto value = rest.find_first_not_of(' ');
    if (!begins || value == std::string_view::npos || rest[value] != '=') continue;
    rest.remove_prefix(value + 1);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    return std::string(rest.substr(0, rest.find_first_of("/,+\n")));
  }
  return "";
}

std::string signingIdentifierIn(std::string_view display) {
  constexpr std::string_view name = "Identifier=";
  for (const auto line : linesOf(display))
    if (line.starts_with(name)) return std::string(line.substr(name.size()));
  return "";
}

}  // namespace tamo::acceptance
