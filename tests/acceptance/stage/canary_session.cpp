#include "acceptance/stage/canary_session.hpp"

#include <algorithm>

#include "acceptance/set.hpp"

namespace tamo::acceptance {

std::string canaryFault(const Canary& canary, const Played& played) {
  if (played.outcome == Outcome::Held) return "the check holds all the same";
  if (played.outcome == Outcome::NotPlayed) return "the check is not played: " + played.reason;
  const auto found = [&](const Judgement& one) {
    return !one.holds && (canary.finds.empty() || one.what == canary.finds);
  };
  if (std::ranges::any_of(played.findings.judgements(), found)) return "";
  const auto other = std::ranges::find(played.findings.judgements(), false, &Judgement::holds);
  return "it fails, but not by \"" + std::string(canary.finds) + "\"" +
         (other == played.findings.judgements().end() ? ""
                                                      : " but by \"" + other->what + "\": " + other->seen);
}

int playCanaries(const std::vector<std::string>& names, const std::string& programs, std::size_t atOnce,
                 std::ostream& out) {
  auto choice = chosen(names);
  std::erase_if(choice.checks, [](const Chosen& one) { return canaryOf(one.check->name) == nullptr; });
  const auto lay = [&](const Check& check) -> Lay {
    return [&programs, lie = canaryOf(check.name)->plant] { return laidStage(programs, lie); };
  };
  int missed = 0;
  const Watching watching{.begins = [](const Check&) {},
                          .ends =
                              [&](const Played& played) {
                                const auto fault = canaryFault(*canaryOf(played.check->name), played);
                                if (fault.empty()) return;
                                ++missed;
                                out << played.check->name << ": " << fault << "\n";
                              }};
  const auto played =
      playSet(choice.checks, lay, {.terms = {.repetitions = 1, .underLoad = 1}}, atOnce, watching);
  out << played.size() - static_cast<std::size_t>(missed) << " of " << played.size()
      << " lying stages were seen by their check\n";
  return missed == 0 && !played.empty() ? 0 : 1;
}

}  // namespace tamo::acceptance
