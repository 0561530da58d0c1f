#include "acceptance/stage/canary_session.hpp"

#include <algorithm>

#include "acceptance/set.hpp"

namespace tamo::acceptance {

std::string canaryFault(const Canary& canary, const Played& played) {
  if (played.outcome == Outcome::Held) return "the check holds all the same";
  if (played.outcome == Outcome::NotPlayed) return "the check is not played: " + played.reason;
  const auto found = [&](const Judgement& one) { return !one.holds && one.what == canary.finds; };
  if (std::ranges::any_of(played.findings.judgements(), found)) return "";
  const auto other = std::ranges::find(played.findings.judgements(), false, &Judgement::holds);
  return "it fails, but not by \"" + std::string(canary.finds) + "\"" +
         (other == played.findings.judgements().end() ? ""
                                                      : " but by \"" + other->what + "\": " + other->seen);
}

namespace {

constexpr Offer once{.terms = {.repetitions = 1, .underLoad = 1}};

/// How many were played, and how many of them were not as they should be; each of these is told.
struct Tally {
  std::size_t played = 0;
  std::size_t wrong = 0;

  void add(const std::string& what, const std::string& fault, std::ostream& out) {
    ++played;
    if (fault.empty()) return;
    ++wrong;
    out << what << ": " << fault << "\n";
  }
  [[nodiscard]] std::string right() const {
    return std::to_string(played - wrong) + " of " + std::to_string(played);
  }
};

const Watching nobody{.begins = [](const Check&) {}, .ends = [](const Played&) {}};

Tally canariesPlayed(const std::vector<Chosen>& set, const std::string& programs, std::size_t atOnce,
                     std::ostream& out) {
  const auto lay = [&](const Chosen& one) -> Lay {
    return [&programs, lie = canaryOf(one.check->name)->plant] { return laidStage(programs, lie); };
  };
  Tally tally;
  for (const auto& played : playSet(set, lay, once, atOnce, nobody))
    tally.add(std::string(played.check->name), canaryFault(*canaryOf(played.check->name), played), out);
  return tally;
}

Tally sparedPlayed(const std::string& programs, std::size_t atOnce, std::ostream& out) {
  const auto kinds = oneOfEachLie();
  std::vector<Chosen> set;
  for (const auto* kind : kinds)
    set.push_back({checkNamed(sparedBy(kind->plant)), ""});
  const auto lay = [&](const Chosen& one) -> Lay {
    return [&programs, lie = kinds.at(static_cast<std::size_t>(&one - set.data()))->plant] {
      return laidStage(programs, lie);
    };
  };
  Tally tally;
  const auto played = playSet(set, lay, once, atOnce, nobody);
  for (std::size_t kind = 0; kind < kinds.size(); ++kind)
    tally.add(std::string(kinds[kind]->check), sparedFault(played.at(kind)), out);
  return tally;
}

}  // namespace

std::string sparedFault(const Played& played) {
  if (played.outcome == Outcome::Held) return "";
  return "its lie is nothing to " + std::string(played.check->name) + ", which does not hold all the same";
}

int playCanaries(const std::vector<std::string>& names, const std::string& programs, std::size_t atOnce,
                 std::ostream& out) {
  auto choice = chosen(names);
  std::erase_if(choice.checks, [](const Chosen& one) { return canaryOf(one.check->name) == nullptr; });
  const auto seen = canariesPlayed(choice.checks, programs, atOnce, out);
  out << seen.right() << " lying stages were seen by their check\n";
  const auto spared = names.empty() ? sparedPlayed(programs, atOnce, out) : Tally();
  if (names.empty()) out << spared.right() << " lies spared the check that they are nothing to\n";
  return seen.wrong + spared.wrong == 0 && seen.played > 0 ? 0 : 1;
}

}  // namespace tamo::acceptance
