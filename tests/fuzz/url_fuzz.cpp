#include <array>

#include "app/request_intake.hpp"
#include "app/tamo_core_config.hpp"
#include "fuzz/insist.hpp"
#include "fuzz/target.hpp"

/// What a URL asks for, on any bytes.
namespace tamo::fuzz {
namespace {

constexpr std::array<std::string_view, 7> names{
    "register", "unregister", "reseat", "restart", "sync", "status", "move-to-applications",
};

/// The whole URL is the scheme, a colon, slashes, the name and slashes.
bool asksFor(std::string_view url, std::string_view name) {
  constexpr std::string_view scheme = "tamo-core:";
  if (!url.starts_with(scheme)) return false;
  const auto at = url.find(name, scheme.size());
  if (at == std::string_view::npos) return false;
  const auto before = url.substr(scheme.size(), at - scheme.size());
  const auto behind = url.substr(at + name.size());
  const auto isSlashes = [](std::string_view text) { return text == std::string(text.size(), '/'); };
  return isSlashes(before) && isSlashes(behind);
}

std::optional<std::string> describedAction(std::string_view url) {
  for (const auto name : names)
    if (asksFor(url, name)) return std::string(name);
  return std::nullopt;
}

}  // namespace

void readInput(std::string_view bytes) {
  const auto action = RequestIntake::actionOfUrl(bytes, TamoCoreConfig().urlScheme);
  insist(action == describedAction(bytes), "the action is the one that the URL spells");
}

}  // namespace tamo::fuzz
