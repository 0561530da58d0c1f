#include "attacks/sweep.hpp"

#include <algorithm>
#include <memory>

#include "faults/death_rules.hpp"
#include "simulation/director.hpp"
#include "simulation/referee.hpp"
#include "simulation/simulator.hpp"

namespace tamo::attacks {
namespace {

using simulation::Call;
using simulation::Way;

/// Far more than any take needs.
constexpr std::uint64_t mostEvents = 200'000;
/// How far apart the moments are at which somebody strikes while the companion waits.
constexpr std::chrono::milliseconds step(50);

/// Nothing fails; somebody has a turn before one call.
class Attacker final : public simulation::Director {
 public:
  Attacker(std::size_t call, std::function<void(Companion&)> strike)
      : call_(call), strike_(std::move(strike)) {}

  [[nodiscard]] Way called(Companion& companion, Call call, std::string_view subject) override {
    if (++count_ != call_) return Way::None;
    // Between the last look and the signal come the looks for markers, and the signal itself.
    inTheGap_ = call == Call::kill || (call == Call::exists && subject.contains("core.db.revert"));
    strike_(companion);
    struck_ = true;
    return Way::None;
  }
  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] bool struck() const { return struck_; }
  [[nodiscard]] bool inTheGap() const { return inTheGap_; }

 private:
  std::size_t call_;
  std::function<void(Companion&)> strike_;
  std::size_t count_ = 0;
  bool struck_ = false;
  bool inTheGap_ = false;
};

Companion& addFirst(World& world, const Scene& scene, By by) {
  return *world.companions.emplace_back(
      std::make_unique<Companion>(world, planOf(scene, by, scene.action, "first")));
}

}  // namespace

Sweep::Untouched Sweep::untouched(const Scene& scene, By by) {
  World world(timeline_, simulation::Dice::calm(), plant_, false);
  timeline_.begin(world.dice);
  Attacker nobody(0, [](Companion&) {});
  world.director = &nobody;
  furnish(world, scene);
  const Canaries canaries(world);
  addFirst(world, scene, by).launch();
  static_cast<void>(timeline_.runUntilIdle(mostEvents));
  const Untouched found{.calls = nobody.count(), .lasted = world.lastEnd};
  endAll(world);
  return found;
}

void Sweep::play(const Attack& attack, const Scene& scene, By by) {
  const auto run = untouched(scene, by);
  for (std::size_t call = 1; call <= run.calls; ++call)
    maybePlayOne(attack, scene, by, {.call = call});
  for (Time at = step; at < run.lasted; at += step)
    maybePlayOne(attack, scene, by, {.at = at});
}

void Sweep::maybePlayOne(const Attack& attack, const Scene& scene, By by, const Moment& moment) {
  if (all_++ % stride_ == 0) playOne(attack, scene, by, moment);
}

std::string Sweep::textOf(const Attack& attack, const Scene& scene, By by, const Moment& moment) {
  const auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(moment.at).count();
  return std::string(attack.name) + " in " + scene.name + (by == By::Url ? " url" : " switch") +
         (moment.call > 0 ? " before call " + std::to_string(moment.call)
                          : " at " + std::to_string(millis) + " ms");
}

/// Sorts what the referee saw into what the attack is excused for, what nothing can prevent, and what is wrong.
void Sweep::sortOut(const Attack& attack, const World& world, bool inTheGap,
                    std::vector<std::string>& wrong) {
  for (const auto& broken : world.verdict.violations()) {
    const bool gap =
        inTheGap && (broken.invariant == Invariant::SignalTarget || broken.invariant == Invariant::Spared);
    if (gap) {
      ++tally_.inTheGap;
    } else if (std::ranges::find(attack.excused, broken.invariant) != attack.excused.end()) {
      ++tally_.excused[std::string(attack.name) + ": " + std::string(nameOf(broken.invariant))];
    } else {
      wrong.push_back(std::string(nameOf(broken.invariant)) + ": " + broken.detail);
    }
  }
}

void Sweep::playOne(const Attack& attack, const Scene& scene, By by, const Moment& moment) {
  World world(timeline_, simulation::Dice::calm(), plant_, false);
  timeline_.begin(world.dice);
  furnish(world, scene);
  Canaries canaries(world);
  bool struck = false;
  const auto strike = [&](Companion& companion) {
    attack.strike(world, companion, canaries);
    struck = true;
  };
  Attacker attacker(moment.call, strike);
  world.director = &attacker;
  auto& first = addFirst(world, scene, by);
  if (moment.call == 0) timeline_.after(moment.at, [&] { strike(first); });
  first.launch();
  const bool inTime = timeline_.runUntilIdle(mostEvents);
  auto wrong = canaries.harmed();
  if (!inTime || !first.ended()) wrong.emplace_back("Ends: it does not come to an end");
  // What somebody laid after the companion had done with a place is his own.
  world.files.unlink();
  canaries.removeFiles();
  if (!attack.mayLeave.empty()) world.files.remove(attack.mayLeave);
  simulation::Referee::runEnded(world, inTime);
  sortOut(attack, world, attacker.inTheGap(), wrong);
  faults::judgeFiles(world, wrong);
  ++tally_.takes;
  if (!struck) ++tally_.missed;
  if (!wrong.empty()) ++tally_.broken;
  for (const auto& each : wrong) {
    auto& kind = tally_.wrong[std::string(attack.name) + ": " + each.substr(0, each.find(':'))];
    if (kind.times++ == 0) kind.first = textOf(attack, scene, by, moment) + ": " + each;
  }
  endAll(world);
}

}  // namespace tamo::attacks
