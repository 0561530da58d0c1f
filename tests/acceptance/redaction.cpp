#include "acceptance/redaction.hpp"

#include <algorithm>

namespace tamo::acceptance {
namespace {

bool isWordLetter(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         byte >= 0x80;
}

char folded(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool sameAt(std::string_view text, std::size_t at, std::string_view secret) {
  return text.size() - at >= secret.size() &&
         std::ranges::equal(text.substr(at, secret.size()), secret, {}, folded, folded);
}

bool standsAlone(std::string_view text, std::size_t at, std::size_t size) {
  const bool before = at > 0 && isWordLetter(text[at]) && isWordLetter(text[at - 1]);
  const auto end = at + size;
  const bool after = end < text.size() && isWordLetter(text[end - 1]) && isWordLetter(text[end]);
  return !before && !after;
}

std::string without(std::string_view text, const Secret& secret) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    if (sameAt(text, at, secret.text) && standsAlone(text, at, secret.text.size())) {
      result += secret.instead;
      at += secret.text.size();
    } else {
      result += text[at++];
    }
  }
  return result;
}

void add(std::vector<Secret>& secrets, const std::string& text, const std::string& instead) {
  if (text.size() >= 2) secrets.push_back({text, instead});
}

/// Also without the domain behind its first dot.
void addHost(std::vector<Secret>& secrets, const std::string& name) {
  add(secrets, name, "(host)");
  add(secrets, name.substr(0, name.find('.')), "(host)");
}

}  // namespace

std::string redacted(std::string text, const std::vector<Secret>& secrets) {
  for (const auto& secret : secrets)
    if (secret.text.size() >= 2) text = without(text, secret);
  return text;
}

std::vector<Secret> secretsOf(const Identity& identity) {
  std::vector<Secret> secrets;
  if (identity.temporary != "/tmp" && identity.temporary != "/tmp/")
    add(secrets, identity.temporary, "(temporary)/");
  if (identity.home != "/") add(secrets, identity.home, "~");
  add(secrets, identity.fullName, "(name)");
  for (const auto& host : identity.hostNames)
    addHost(secrets, host);
  add(secrets, identity.userName, "(user)");
  add(secrets, identity.serial, "(serial)");
  return secrets;
}

}  // namespace tamo::acceptance
