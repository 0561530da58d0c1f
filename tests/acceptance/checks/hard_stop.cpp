#include <algorithm>
#include <csignal>

#include "acceptance/bystander.hpp"
#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono_literals;

std::string killedGroup(pid_t pid) {
  return "killedGroup(" + std::to_string(pid) + ", gone: true)";
}

void aLateExit(Scene& scene) {
  const auto before = scene.freshCore("term=late:1000");
  const auto acted = scene.act("restart");
  scene.left(acted, {definition("false"), hardStop(before, "exited"), enabled("restart", " kickstart 0")});
  scene.see.that(acted.after >= 1400ms, "it is given its time", std::to_string(acted.after.count()) + " ms");
  scene.replaced(before);
}

void theWholeGroup(Scene& scene) {
  const Bystander stranger;
  const auto before = scene.freshCore("term=ignore children=2");
  const auto helpers = scene.helpers();
  scene.see.equal("the Core has two helpers", "2", std::to_string(helpers.size()));
  const auto acted = scene.act("restart");
  scene.left(acted, {definition("false"), hardStop(before, killedGroup(before)),
                     enabled("restart", " kickstart 0")});
  scene.see.that(acted.after >= 2400ms, "the grace was kept", std::to_string(acted.after.count()) + " ms");
  const bool gone = std::ranges::none_of(helpers, [&](pid_t pid) { return scene.alive(pid); });
  scene.see.that(gone, "the helpers are gone with it");
  scene.replaced(before);
  scene.see.equal("nobody else was signalled", "", stranger.signalled());
}

void theProcessAlone(Scene& scene) {
  const auto before = scene.freshCore("term=ignore group=parent");
  const auto info = scene.place.kernel.info(before);
  if (info && info->group == before)
    throw CannotArrange("the Core could not leave the group that launchd gave it");
  scene.left(
      scene.act("restart"),
      {definition("false"), hardStop(before, "killedProcess(" + std::to_string(before) + ", gone: true)"),
       enabled("restart", " kickstart 0")});
  scene.replaced(before);
}

void helpersThatLeft(Scene& scene) {
  const auto before = scene.freshCore("term=ignore children=1:leave");
  const auto helpers = scene.helpers();
  if (!scene.see.equal("the Core has a helper in another group", "1", std::to_string(helpers.size()))) return;
  scene.left(scene.act("restart"), {definition("false"), hardStop(before, killedGroup(before)),
                                    enabled("restart", " kickstart 0")});
  scene.replaced(before);
  scene.see.that(scene.alive(helpers.front()), "the helper that left the group lives");
  Scene::signal(helpers.front(), SIGKILL);
}

void aCoreThatStoppedItself(Scene& scene) {
  const auto before = scene.freshCore("stops-itself");
  scene.left(scene.act("restart"), {definition("false"), hardStop(before, killedGroup(before)),
                                    enabled("restart", " kickstart 0")});
  scene.replaced(before);
}

void aCoreThatWasStopped(Scene& scene) {
  const auto before = scene.core();
  Scene::signal(before, SIGSTOP);
  const auto acted = scene.act("restart");
  const auto line = acted.lines.size() < 2 ? "" : comparable(acted.lines.at(1));
  const bool killed = line == hardStop(before, killedGroup(before)) ||
                      line == hardStop(before, "killedProcess(" + std::to_string(before) + ", gone: true)");
  scene.see.that(killed || line == hardStop(before, "exited"),
                 "the hard stop killed it, or launchd was faster", line);
  scene.see.fact("who ended a Core that hangs", killed ? "the hard stop" : "launchd");
  scene.ended(acted, enabled("restart", " kickstart 0"));
  scene.replaced(before);
}

void reseatingAStubbornCore(Scene& scene) {
  const auto before = scene.freshCore("term=ignore");
  scene.left(scene.act("reseat"), {hardStop(before, killedGroup(before)), enabled("reseat")});
  scene.replaced(before);
}

void aKickstartThatFails(Scene& scene) {
  const auto before = scene.freshCore("term=ignore");
  scene.place.faults.failLaunchctl("kickstart", 5);
  scene.left(scene.act("restart"),
             {definition("false"), hardStop(before, "cancelled"), enabled("restart", " kickstart 5")});
  scene.untouched(before);
}

void anUnregisterThatFails(Scene& scene) {
  const auto before = scene.freshCore("term=ignore");
  scene.place.faults.failNextUnregister("SMAppServiceErrorDomain", 5, "no");
  scene.left(scene.act("reseat"), {hardStop(before, "cancelled"),
                                   "reseat -> status 1 ok Optional(false) error SMAppServiceErrorDomain 5"});
  scene.untouched(before);
}

}  // namespace

Theme hardStopChecks() {
  using enum Setting;
  return {"hard stop",
          {{"stop-exited-late", "A Core that exits a second late is given its time: exited.", Registered,
            aLateExit, true},
           {"stop-killed-group",
            "A Core that ignores SIGTERM is killed with its group after two seconds, and nobody else.",
            Registered, theWholeGroup, true},
           {"stop-killed-process", "A Core that leads no group is killed alone.", Registered, theProcessAlone,
            true},
           {"stop-helper-outside", "A helper that left the group of its Core survives the kill.", Registered,
            helpersThatLeft, true},
           {"stop-self-stopped", "A Core that has stopped itself is killed.", Registered,
            aCoreThatStoppedItself, true},
           {"stop-hung", "A Core that was stopped by a signal is ended and replaced.", Registered,
            aCoreThatWasStopped},
           {"stop-under-reseat", "A reseat kills a Core that ignores SIGTERM.", Registered,
            reseatingAStubbornCore, true},
           {"stop-cancelled-restart", "A kickstart that fails while the Core lives calls the hard stop off.",
            Registered, aKickstartThatFails, true},
           {"stop-cancelled-reseat", "An unregistering that fails calls the hard stop off.", Registered,
            anUnregisterThatFails, true}}};
}

}  // namespace tamo::acceptance
