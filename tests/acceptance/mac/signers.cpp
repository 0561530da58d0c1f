#include "acceptance/mac/signers.hpp"

#include <algorithm>

namespace tamo::acceptance {
namespace {

/// "Developer ID Application: NAME (TEAM)" names a person and a team.
void addSigner(std::vector<Secret>& secrets, const std::string& identity) {
  secrets.push_back({identity, "(identity)"});
  const auto colon = identity.find(": ");
  const auto open = identity.rfind(" (");
  if (open == std::string::npos || !identity.ends_with(')')) return;
  secrets.push_back({identity.substr(open + 2, identity.size() - open - 3), "(team)"});
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

std::vector<Secret> signersOf(std::string_view identities, const std::string& identity) {
  std::vector<Secret> secrets;
  if (identity == "-") return secrets;
  for (const auto line : linesOf(identities))
    if (line.contains(identity) && !quoted(line).empty()) addSigner(secrets, quoted(line));
  addSigner(secrets, identity);
  return secrets;
}

std::string signingIdentifierIn(std::string_view display) {
  constexpr std::string_view name = "Identifier=";
  for (const auto line : linesOf(display))
    if (line.starts_with(name)) return std::string(line.substr(name.size()));
  return "";
}

}  // namespace tamo::acceptance
