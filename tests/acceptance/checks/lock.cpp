#include "acceptance/check.hpp"
#include "acceptance/lock_holder.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono_literals;

void held(Scene& scene) {
  const auto before = scene.core();
  const LockHolder holder(scene.place.paths.lockFile);
  const auto acted = scene.act("sync");
  scene.left(acted, {definition("false"), enabled("sync")});
  const auto took = std::to_string(acted.after.count()) + " ms";
  scene.see.that(acted.after >= 60s && acted.after < 75s, "it waits for a minute, and no longer", took);
  scene.see.fact("a sync with the lock held by a stranger took", took);
  scene.untouched(before);
}

void released(Scene& scene) {
  LockHolder holder(scene.place.paths.lockFile);
  const auto going = scene.begin("sync");
  Scene::pause(2s);
  const auto early = scene.place.evidence.lines(going.since, 0);
  scene.see.that(early.empty(), "nothing is done while the lock is held",
                 std::to_string(early.size()) + " lines");
  holder.release();
  const auto acted = scene.finish(going);
  scene.left(acted, {definition("false"), enabled("sync")});
  scene.see.that(acted.after < 20s, "it goes on once the lock is free",
                 std::to_string(acted.after.count()) + " ms");
}

void notNeeded(Scene& scene) {
  const LockHolder holder(scene.place.paths.lockFile);
  const auto acted = scene.act("status");
  scene.left(acted, {enabled("status")});
  scene.see.that(acted.after < 30s, "the status waits for no lock",
                 std::to_string(acted.after.count()) + " ms");
}

}  // namespace

Theme lockChecks() {
  using enum Setting;
  return {"lock",
          {{"lock-held", "With the lock held by a stranger an action waits a minute and goes on without.",
            Registered, held},
           {"lock-released", "An action begins as soon as the lock is free.", Registered, released},
           {"lock-status", "The status needs no lock.", Registered, notNeeded}}};
}

}  // namespace tamo::acceptance
