#include "acceptance/stage/canary_session.hpp"

#include <algorithm>
#include <array>
#include <utility>

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

std::string sparedFault(const Played& played) {
  if (played.outcome == Outcome::Held) return "";
  return "its lie is nothing to " + std::string(played.check->name) + ", which does not hold all the same";
}

std::string honestFault(const Played& played) {
  if (played.outcome == Outcome::Held) return "";
  if (played.outcome == Outcome::NotPlayed)
    return "it is not played on a stage that is honest: " + played.reason;
  const auto failed = std::ranges::find(played.findings.judgements(), false, &Judgement::holds);
  return "it fails on a stage that is honest, by \"" + failed->what + "\": " + failed->seen;
}

std::vector<Turn> turnsOf(const std::vector<Chosen>& checks) {
  std::vector<const Canary*> canaries;
  for (const auto& one : checks)
    if (const auto* canary = canaryOf(one.check->name)) canaries.push_back(canary);
  std::vector<Turn> turns;
  for (std::size_t at = 0; at < canaries.size(); ++at) {
    const auto* next = canaries.at((at + 1) % canaries.size());
    turns.push_back({Turn::Kind::Lying, checkNamed(canaries.at(at)->check), canaries.at(at)});
    turns.push_back({Turn::Kind::Honest, checkNamed(next->check), nullptr});
  }
  return turns;
}

namespace {

constexpr Offer once{.terms = {.repetitions = 1, .underLoad = 1}};
const Watching nobody{.begins = [](const Check&) {}, .ends = [](const Played&) {}};

/// How many were played, and how many of them were not as they should be; each of these is told.
struct Tally {
  std::size_t played = 0;
  std::size_t wrong = 0;

  void add(std::string_view what, const std::string& fault, std::ostream& out) {
    ++played;
    if (fault.empty()) return;
    ++wrong;
    out << what << ": " << fault << "\n";
  }
  [[nodiscard]] std::string right() const {
    return std::to_string(played - wrong) + " of " + std::to_string(played);
  }
};

std::string faultOf(const Turn& turn, const Played& played) {
  if (turn.kind == Turn::Kind::Lying) return canaryFault(*turn.canary, played);
  return turn.kind == Turn::Kind::Spared ? sparedFault(played) : honestFault(played);
}

std::vector<Played> played(const std::vector<Turn>& turns, const std::string& programs, std::size_t atOnce) {
  std::vector<Chosen> set;
  for (const auto& turn : turns)
    set.push_back({turn.check, ""});
  const auto lay = [&](const Chosen& one) -> Lay {
    const auto& turn = turns.at(static_cast<std::size_t>(&one - set.data()));
    return [&programs, lie = turn.canary == nullptr ? Lie() : turn.canary->plant] {
      return laidStage(programs, lie);
    };
  };
  return playSet(set, lay, once, atOnce, nobody);
}

}  // namespace

int playCanaries(const std::vector<std::string>& names, const std::string& programs, std::size_t atOnce,
                 std::ostream& out) {
  auto turns = turnsOf(chosen(names).checks);
  if (names.empty())
    for (const auto* kind : oneOfEachLie())
      turns.push_back({Turn::Kind::Spared, checkNamed(sparedBy(kind->plant)), kind});
  const auto results = played(turns, programs, atOnce);
  std::array<Tally, 3> tallies;
  for (std::size_t at = 0; at < turns.size(); ++at) {
    const auto& turn = turns.at(at);
    const auto name = turn.canary == nullptr ? turn.check->name : turn.canary->check;
    tallies.at(std::to_underlying(turn.kind)).add(name, faultOf(turn, results.at(at)), out);
  }
  out << tallies[0].right() << " lying stages were seen by their check\n"
      << tallies[1].right() << " honest stages among them were held to be honest by theirs\n";
  if (names.empty()) out << tallies[2].right() << " lies spared the check that they are nothing to\n";
  const auto wrong = tallies[0].wrong + tallies[1].wrong + tallies[2].wrong;
  return wrong == 0 && !turns.empty() ? 0 : 1;
}

}  // namespace tamo::acceptance
