#include <filesystem>

#include "acceptance/check.hpp"
#include "acceptance/lock_holder.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono_literals;

/// For longer than the grace, and shorter than launchctl waits.
const std::string aWhile = "3200";
/// For longer than the grace and the wait for a spared Core together.
const std::string forLong = "30000";

std::string spared(const std::string& reason, bool gone) {
  return "spared(\"" + reason + "\", gone: " + (gone ? "true" : "false") + ")";
}

/// With an exit timeout that leaves a Core alone for as long as a check looks at it.
void registerPatiently(Scene& scene, const std::string& build) {
  scene.place.copies.place({.build = build, .definition = {.exitTimeout = 90}});
  scene.ended(scene.act("reseat"), enabled("reseat"));
}

/// What the restart leaves whose Core outlives the waits: launchctl is given up after five seconds.
void sparedForGood(Scene& scene, const Acted& acted, pid_t before, const std::string& reason) {
  scene.left(acted, {definition("false"), hardStop(before, spared(reason, false)),
                     enabled("restart", " kickstart *")});
  scene.see.fact("the kickstart of a Core that stays", acted.outcome());
  const auto took = std::to_string(acted.after.count()) + " ms";
  scene.see.that(acted.after >= 22s, "it is watched for twenty seconds more", took);
  scene.see.fact("a restart that watches a Core for 22 seconds took", took);
  scene.see.that(scene.alive(before), "the Core lives");
}

void sparedForAWhile(Scene& scene, const Acted& acted, pid_t before, const std::string& reason) {
  scene.left(acted, {definition("false"), hardStop(before, spared(reason, true)),
                     enabled("restart", " kickstart 0")});
  scene.replaced(before);
}

void aRevert(Scene& scene) {
  const auto before = scene.freshCore("term=revert:" + aWhile);
  sparedForAWhile(scene, scene.act("restart"), before, "revert_restoring");
  const auto marker = scene.place.paths.dataDirectory + "core.db.revert.pending";
  scene.see.that(!std::filesystem::exists(marker), "the revert came to its end");
}

void aLongRevert(Scene& scene) {
  registerPatiently(scene, "4211");
  const auto before = scene.freshCore("term=revert:" + forLong);
  sparedForGood(scene, scene.act("restart"), before, "revert_restoring");
}

void aRelease(Scene& scene) {
  scene.place.copies.place({.build = "1.4.2"});
  const auto before = scene.freshCore("term=late:" + aWhile);
  sparedForAWhile(scene, scene.act("restart"), before, "revert_release");
}

void aReleaseThatStays(Scene& scene) {
  registerPatiently(scene, "1.4.2");
  const auto before = scene.freshCore("term=late:" + forLong);
  sparedForGood(scene, scene.act("restart"), before, "revert_release");
}

/// The lock keeps the companion waiting, so that the Core is certainly the younger one.
Acted restartAYoungCore(Scene& scene, const std::string& behaviour, pid_t& young) {
  Going going;
  {
    const LockHolder holder(scene.place.paths.lockFile);
    going = scene.begin("restart");
    const bool runs = Scene::eventually([&] { return !scene.place.companions.running().empty(); });
    scene.see.that(runs, "the companion waits for the lock");
    Scene::pause(200ms);
    young = scene.freshCore(behaviour);
  }
  return scene.finish(going);
}

void aYoungCore(Scene& scene) {
  pid_t young = 0;
  const auto acted = restartAYoungCore(scene, "term=late:" + aWhile, young);
  sparedForAWhile(scene, acted, young, "young_core");
}

void aYoungCoreThatStays(Scene& scene) {
  registerPatiently(scene, "4211");
  pid_t young = 0;
  const auto acted = restartAYoungCore(scene, "term=late:" + forLong, young);
  sparedForGood(scene, acted, young, "young_core");
}

}  // namespace

Theme spareChecks() {
  using enum Setting;
  return {
      "spared",
      {{"spared-revert", "A Core that is busy with a revert is spared until it is done.", Registered, aRevert,
        true},
       {"spared-revert-stays", "One that is busy for longer is left alone for good.", Registered, aLongRevert,
        true},
       {"spared-release", "The Core of a release build, with a dot, is spared.", Registered, aRelease, true},
       {"spared-release-stays", "One that stays is left alone for good.", Registered, aReleaseThatStays,
        true},
       {"spared-young", "A Core that is younger than the companion is spared.", Registered, aYoungCore, true},
       {"spared-young-stays", "One that stays is left alone for good.", Registered, aYoungCoreThatStays,
        true}}};
}

}  // namespace tamo::acceptance
