#include "faults/sweep.hpp"

#include <array>
#include <utility>

namespace tamo::faults {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t mostWrong = 20;
/// How far apart the moments of a run are at which the companion is killed while it waits.
constexpr milliseconds step(50);

/// Every fault that a run can have from its call number `from` on.
std::vector<Fault> faultsOf(const Played& run, std::size_t from) {
  std::vector<Fault> faults;
  for (std::size_t call = from; call <= run.ways.size(); ++call) {
    for (const auto way : run.ways[call - 1]) {
      faults.push_back({.call = call, .way = way, .forGood = false});
      faults.push_back({.call = call, .way = way, .forGood = true});
    }
  }
  return faults;
}

/// What may be asked for after a death: the same, and other things that touch what it may have left.
std::vector<std::string_view> askedAfter(const Scene& scene) {
  if (scene.copy != simulation::Places::installed || scene.action == "move-to-applications") return {""};
  return {"", "register", "restart", "sync", "unregister"};
}

std::vector<Sequel> everySequel(const Scene& scene) {
  std::vector<Sequel> sequels;
  for (const bool toolsDieToo : {false, true})
    for (const bool again : {false, true})
      for (const auto last : askedAfter(scene))
        sequels.push_back({.toolsDieToo = toolsDieToo, .again = again, .last = last});
  return sequels;
}

}  // namespace

void Tally::add(const Tally& other) {
  calls += other.calls;
  failing += other.failing;
  ways += other.ways;
  takes += other.takes;
  all += other.all;
  missed += other.missed;
  partsLeft += other.partsLeft;
  partsOpened += other.partsOpened;
  compared += other.compared;
  broken += other.broken;
}

Played Sweep::playAll(const Take& take, bool keepsCalls) {
  auto played = player_.play(take, {.plant = how_.plant, .keepsCalls = keepsCalls});
  ++tally_.takes;
  if (played.struck != take.faults.size() || played.killed != take.death.has_value()) ++tally_.missed;
  if (played.compared) ++tally_.compared;
  if (played.partLeft) ++tally_.partsLeft;
  if (played.openedPart) ++tally_.partsOpened;
  if (how_.seen) how_.seen(take, played);
  if (played.wrong.empty()) return played;
  ++tally_.broken;
  if (tally_.wrong.size() < mostWrong) tally_.wrong.push_back(nameOf(take) + ": " + played.wrong.front());
  return played;
}

void Sweep::maybePlay(const Take& take) {
  if (tally_.all++ % how_.stride == 0) static_cast<void>(playAll(take, false));
}

void Sweep::singles(const Scene& scene, By by) {
  Take take{.scene = &scene, .by = by};
  const auto untouched = player_.play(take, {.plant = how_.plant});
  tally_.calls += untouched.calls.size();
  for (const auto& ways : untouched.ways) {
    tally_.ways += ways.size();
    if (!ways.empty()) ++tally_.failing;
  }
  for (const auto& fault : faultsOf(untouched, 1)) {
    take.faults = {fault};
    maybePlay(take);
  }
}

void Sweep::pairs(const Scene& scene, By by) {
  Take take{.scene = &scene, .by = by};
  const auto untouched = player_.play(take, {.plant = how_.plant});
  for (const auto& first : faultsOf(untouched, 1)) {
    if (tally_.firsts++ % how_.firsts != 0) continue;
    take.faults = {first};
    const auto single = player_.play(take, {.plant = how_.plant});
    for (const auto& second : faultsOf(single, first.call + 1)) {
      take.faults = {first, second};
      maybePlay(take);
    }
  }
}

void Sweep::deathsAt(const Take& base, const Death& death, const std::vector<Sequel>& sequels) {
  auto take = base;
  take.death = death;
  for (const auto& sequel : sequels) {
    take.sequel = sequel;
    maybePlay(take);
  }
}

void Sweep::deathsFrom(const Take& base, std::size_t from, const Played& run,
                       const std::vector<Sequel>& sequels) {
  for (std::size_t call = from; call <= run.calls.size(); ++call) {
    deathsAt(base, {.when = Death::When::Before, .call = call}, sequels);
    // After its last call the process ends by itself.
    if (call < run.calls.size()) deathsAt(base, {.when = Death::When::After, .call = call}, sequels);
  }
}

void Sweep::deaths(const Scene& scene, By by) {
  const Take base{.scene = &scene, .by = by};
  const auto untouched = player_.play(base, {.plant = how_.plant});
  const auto sequels = everySequel(scene);
  tally_.calls += untouched.calls.size();
  deathsFrom(base, 1, untouched, sequels);
  for (Time at = step; at < untouched.lasted; at += step)
    deathsAt(base, {.when = Death::When::At, .call = 0, .at = at}, sequels);
}

void Sweep::deathsAfterFaults(const Scene& scene, By by) {
  Take take{.scene = &scene, .by = by};
  const auto untouched = player_.play(take, {.plant = how_.plant});
  const std::vector<Sequel> sequels{{.toolsDieToo = false}, {.toolsDieToo = true}};
  for (const auto& first : faultsOf(untouched, 1)) {
    if (tally_.firsts++ % how_.firsts != 0) continue;
    take.faults = {first};
    const auto single = player_.play(take, {.plant = how_.plant});
    deathsFrom(take, first.call + 1, single, sequels);
  }
}

}  // namespace tamo::faults
