#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>

#include "faults/player.hpp"

namespace tamo::faults {
namespace {

constexpr std::array<std::string_view, 3> whens{"before", "after", "at"};
using std::chrono::milliseconds;

std::optional<std::size_t> numberOf(std::string_view word) {
  std::size_t value = 0;
  const auto [stopped, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  return error == std::errc() && stopped == word.data() + word.size() ? std::optional(value) : std::nullopt;
}

std::optional<Way> wayNamed(std::string_view name) {
  for (std::size_t way = 1; way < simulation::wayCount; ++way) {
    if (simulation::nameOf(static_cast<Way>(way)) == name) return static_cast<Way>(way);
  }
  return std::nullopt;
}

/// 57:Torn for once, 57:Torn! for good.
std::optional<Fault> faultNamed(std::string_view word) {
  const auto colon = word.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const bool forGood = word.ends_with('!');
  const auto call = numberOf(word.substr(0, colon));
  const auto way = wayNamed(word.substr(colon + 1, word.size() - colon - 1 - (forGood ? 1 : 0)));
  if (!call || !way) return std::nullopt;
  return Fault{.call = *call, .way = *way, .forGood = forGood};
}

std::string nameOf(const Fault& fault) {
  return std::to_string(fault.call) + ":" + std::string(simulation::nameOf(fault.way)) +
         (fault.forGood ? "!" : "");
}

std::string nameOf(const Death& death) {
  const auto number =
      death.when == Death::When::At
          ? static_cast<std::size_t>(std::chrono::duration_cast<milliseconds>(death.at).count())
          : death.call;
  return std::string(whens.at(static_cast<std::size_t>(death.when))) + " " + std::to_string(number);
}

std::optional<Death> deathNamed(const std::string& word, std::istream& rest) {
  const auto found = std::find(whens.begin(), whens.end(), word);
  std::string text;
  rest >> text;
  const auto number = numberOf(text);
  if (found == whens.end() || !number) return std::nullopt;
  const auto when = static_cast<Death::When>(found - whens.begin());
  return Death{.when = when, .call = *number, .at = milliseconds(*number)};
}

/// Keeps the names of actions, which a take only refers to.
std::string_view actionNamed(std::string_view word) {
  for (const auto& scene : scenes()) {
    if (scene.action == word) return scene.action;
  }
  return "";
}

bool understood(Take& take, const std::string& word, std::istream& rest) {
  if (const auto fault = faultNamed(word)) {
    take.faults.push_back(*fault);
  } else if (word == "tools-die") {
    take.sequel.toolsDieToo = true;
  } else if (word == "again") {
    take.sequel.again = true;
  } else if (word == "then") {
    std::string action;
    rest >> action;
    take.sequel.last = actionNamed(action);
    return !take.sequel.last.empty();
  } else {
    take.death = deathNamed(word, rest);
    return take.death.has_value();
  }
  return true;
}

}  // namespace

std::string nameOf(const Take& take) {
  std::string name = take.scene->name + (take.by == By::Url ? " url" : " switch");
  for (const auto& fault : take.faults)
    name += " " + nameOf(fault);
  if (!take.death) return name;
  name += " " + nameOf(*take.death);
  if (take.sequel.toolsDieToo) name += " tools-die";
  if (take.sequel.again) name += " again";
  if (!take.sequel.last.empty()) name += " then " + std::string(take.sequel.last);
  return name;
}

std::optional<Take> takeNamed(std::string_view words) {
  std::istringstream rest{std::string(words)};
  std::string scene;
  std::string by;
  rest >> scene >> by;
  Take take{.scene = sceneNamed(scene), .by = by == "url" ? By::Url : By::Switch};
  if (take.scene == nullptr || (by != "url" && by != "switch")) return std::nullopt;
  for (std::string word; rest >> word;) {
    if (!understood(take, word, rest)) return std::nullopt;
  }
  // What follows a death means nothing without one.
  const auto& sequel = take.sequel;
  const bool follows = sequel.toolsDieToo || sequel.again || !sequel.last.empty();
  if (follows && !take.death) return std::nullopt;
  return take;
}

}  // namespace tamo::faults
