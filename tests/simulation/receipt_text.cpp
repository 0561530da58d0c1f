#include "simulation/receipt_text.hpp"

#include <utility>

namespace tamo::simulation {
namespace {

using Member = std::pair<std::string, std::string>;

std::string value(std::string_view raw) {
  if (!raw.starts_with('"')) return std::string(raw);
  std::string text;
  for (std::size_t index = 1; index + 1 < raw.size(); ++index) {
    if (raw[index] == '\\') ++index;
    text += raw[index];
  }
  return text;
}

std::optional<Member> member(std::string_view line) {
  constexpr std::string_view between = "\" : ";
  const auto end = line.find(between);
  if (!line.starts_with("  \"") || end == std::string_view::npos) return std::nullopt;
  return Member(line.substr(3, end - 3), value(line.substr(end + between.size())));
}

}  // namespace

std::optional<ReceiptMembers> receiptMembers(std::string_view bytes) {
  if (!bytes.starts_with("{\n") || !bytes.ends_with("\n}")) return std::nullopt;
  auto rest = bytes.substr(2, bytes.size() - 4);
  ReceiptMembers members;
  while (!rest.empty()) {
    const auto end = rest.find(",\n");
    auto found = member(rest.substr(0, end));
    if (!found || (!members.empty() && members.rbegin()->first >= found->first)) return std::nullopt;
    members.insert(*std::move(found));
    rest = end == std::string_view::npos ? "" : rest.substr(end + 2);
  }
  return members;
}

}  // namespace tamo::simulation
