#include "faults/outcomes.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <utility>
#include <vector>

#include "faults/sweep.hpp"

namespace tamo::faults {
namespace {

namespace Places = simulation::Places;

struct Short {
  std::string_view path;
  std::string_view name;
};

/// A path in the words of a person.
std::string shortened(std::string_view subject) {
  constexpr std::array shorts{Short{Places::installed, "installed"}, Short{Places::downloaded, "downloaded"},
                              Short{Places::translocated, "translocated"}, Short{"/tmp/u", "tmp"}};
  const auto file = subject.substr(subject.rfind('/') + 1);
  const auto* found = std::find_if(shorts.begin(), shorts.end(),
                                   [subject](const Short& each) { return subject.starts_with(each.path); });
  if (found == shorts.end()) return std::string(file.ends_with("-core.json") ? "receipt" : file);
  if (subject == found->path) return std::string(found->name);
  return std::string(found->name) + "/" +
         (file.starts_with("tamo-core-print-") ? "print" : std::string(file));
}

std::string whatFailed(const Met& met, bool forGood) {
  const auto subject = shortened(met.subject);
  return std::string(nameOf(met.call)) + (subject.empty() ? "" : " " + subject) +
         (forGood ? " for good" : "");
}

/// The how-manieth call of its kind and subject a call is.
std::size_t placeOf(const std::vector<Met>& calls, std::size_t call) {
  const auto& met = calls[call - 1];
  const auto same = [&met](const Met& each) { return each.call == met.call && each.subject == met.subject; };
  return static_cast<std::size_t>(
      std::count_if(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(call), same));
}

struct Failure {
  std::string what;
  Way way;
  auto operator<=>(const Failure&) const = default;
};

/// The failures that are answered alike, and the places of the calls.
using Numbers = std::vector<std::size_t>;
using Answers = std::map<std::string, std::map<Failure, Numbers>>;

/// 1,2,3,7 as 1-3,7.
std::string textOf(const Numbers& places) {
  std::string text;
  for (std::size_t index = 0; index < places.size(); ++index) {
    const auto first = places[index];
    while (index + 1 < places.size() && places[index + 1] == places[index] + 1)
      ++index;
    text += (text.empty() ? "" : ",") + std::to_string(first);
    if (places[index] != first) text += "-" + std::to_string(places[index]);
  }
  return text;
}

std::string textOf(const std::map<Failure, Numbers>& failures) {
  std::map<std::string, std::string> ways;
  for (const auto& [failure, places] : failures)
    ways[failure.what + " #" + textOf(places)] += " " + std::string(nameOf(failure.way));
  std::string text;
  for (const auto& [what, all] : ways)
    text.append("      ").append(what).append(":").append(all).append("\n");
  return text;
}

std::string told(const Played& played, const Played& usual) {
  return (played.told.empty() ? "nothing" : played.told) + " | " +
         (played.left == usual.left ? "as usual" : played.left);
}

/// Without a receipt a password entry may be missing, and nothing else fails otherwise than with one.
bool counts(const Met& met, By by) {
  return by == By::Switch || met.call == Call::passwordEntry;
}

}  // namespace

std::string outcomesOf(const Scene& scene, By by, simulation::Plant plant) {
  Player player;
  const auto usual = player.play({.scene = &scene, .by = by}, {.plant = plant});
  Answers answers;
  Sweep sweep({.plant = plant, .seen = [&](const Take& take, const Played& played) {
                 const auto& fault = take.faults.front();
                 const auto& met = usual.calls[fault.call - 1];
                 if (!counts(met, by) || (played.told == usual.told && played.left == usual.left)) return;
                 auto& failures = answers[told(played, usual)];
                 failures[{whatFailed(met, fault.forGood), fault.way}].push_back(
                     placeOf(usual.calls, fault.call));
               }});
  sweep.singles(scene, by);
  auto text = "\n" + scene.name + (by == By::Url ? " by URL" : "") + "\n  = " + usual.told + " | " +
              usual.left + "\n";
  for (const auto& [outcome, failures] : answers)
    text += "  " + outcome + "\n" + textOf(failures);
  return text;
}

std::string outcomesOfSingles() {
  std::string text;
  for (const auto& scene : scenes()) {
    for (const auto by : {By::Switch, By::Url})
      text += outcomesOf(scene, by, simulation::Plant::None);
  }
  return text;
}

}  // namespace tamo::faults
