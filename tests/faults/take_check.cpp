#include "faults/take_check.hpp"

#include <algorithm>

namespace tamo::faults {
namespace {

std::string textOf(const std::vector<Way>& ways) {
  if (ways.empty()) return "has no way to fail";
  std::string text = "fails only so:";
  for (const auto way : ways)
    text += " " + std::string(simulation::nameOf(way));
  return text;
}

std::string callText(const Played& run, std::size_t call) {
  const auto& met = run.calls[call - 1];
  const auto subject = met.subject.empty() ? "" : " " + met.subject;
  return "call " + std::to_string(call) + ", " + std::string(nameOf(met.call)) + subject + ",";
}

/// `run` has the faults before this one.
std::string whyNot(const Played& run, const Fault& fault) {
  const auto count = run.calls.size();
  if (fault.call == 0 || fault.call > count)
    return "there is no call " + std::to_string(fault.call) + ": the run has " + std::to_string(count);
  const auto& ways = run.ways[fault.call - 1];
  if (std::ranges::find(ways, fault.way) != ways.end()) return "";
  return callText(run, fault.call) + " " + textOf(ways);
}

bool sameCall(const Fault& left, const Fault& right) {
  return left.call == right.call;
}

}  // namespace

/// A fault changes what follows it, so each is asked for in a run that has the ones before it.
std::string whyNotPlayed(Player& player, const Take& take) {
  auto faults = take.faults;
  std::ranges::sort(faults, {}, &Fault::call);
  if (std::ranges::adjacent_find(faults, sameCall) != faults.end()) return "a call has two faults";
  Take before{.scene = take.scene, .by = take.by};
  for (const auto& fault : faults) {
    auto why = whyNot(player.play(before, {}), fault);
    if (!why.empty()) return why;
    before.faults.push_back(fault);
  }
  const auto played = player.play(take, {});
  if (take.death && !played.killed) return "the death is not reached";
  return played.struck == faults.size() ? "" : "not every fault is reached before the death";
}

}  // namespace tamo::faults
