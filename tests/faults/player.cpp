#include "faults/player.hpp"

#include "faults/course.hpp"
#include "simulation/simulator.hpp"

namespace tamo::faults {

Played Player::playOnce(const Take& take, const How& how, std::optional<Fresh>& fresh) {
  World world(timeline_, simulation::Dice::calm(), how.plant, how.traced);
  timeline_.begin(world.dice);
  ScriptedDirector director({.faults = take.faults, .death = take.death, .keepsCalls = how.keepsCalls});
  world.director = &director;
  furnish(world, *take.scene);
  Played played;
  Course course(world, take, director);
  course.play(played);
  if (course.fresh()) fresh = Fresh{.scene = *course.fresh(), .by = take.by};
  played.calls = director.calls();
  played.ways = director.ways();
  played.struck = director.struck();
  played.openedPart = director.openedPart();
  for (const auto& broken : world.verdict.violations())
    played.wrong.push_back(broken.who + ": " + std::string(nameOf(broken.invariant)) + ": " + broken.detail);
  played.trace = world.trace.text();
  endAll(world);
  return played;
}

const std::string& Player::toldInFresh(const Fresh& fresh) {
  const auto& scene = fresh.scene;
  const auto key = scene.name + (fresh.by == By::Url ? " url " : " switch ") + std::string(scene.action) +
                   " " + std::to_string(scene.status) + (scene.loaded ? " loaded " : " ") +
                   std::to_string(scene.definition) + (scene.coreRuns ? " runs " : " ") +
                   std::string(scene.installed);
  const auto [found, isNew] = told_.try_emplace(key);
  if (!isNew) return found->second;
  std::optional<Fresh> none;
  found->second = playOnce({.scene = &scene, .by = fresh.by}, {.keepsCalls = false}, none).told;
  return found->second;
}

/// A clean run after a death has to tell what it tells on a Mac that never saw the death.
Played Player::play(const Take& take, const How& how) {
  std::optional<Fresh> fresh;
  auto played = playOnce(take, how, fresh);
  played.compared = fresh.has_value();
  if (!fresh) return played;
  const auto& due = toldInFresh(*fresh);
  if (played.lastTold != due) played.wrong.push_back("told: " + played.lastTold + "; on a fresh Mac: " + due);
  return played;
}

}  // namespace tamo::faults
