#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono_literals;

void statusOfAnAgentNeverRegistered(Scene& scene) {
  const auto acted = scene.act("status");
  const auto outcome = acted.outcome();
  scene.see.that(
      outcome == "status -> status 0 ok Optional(true)" || outcome == "status -> status 3 ok Optional(true)",
      "the status is 0 or 3, and ok", outcome);
  scene.see.fact("the status of an agent that is not registered",
                 outcome.substr(0, std::min<std::size_t>(outcome.size(), 18)));
  scene.see.that(scene.place.companions.running().empty(), "no companion is left running");
  scene.see.equal("no Core runs", "0", std::to_string(scene.coreNow()));
}

void registering(Scene& scene) {
  scene.left(scene.act("register"), {enabled("register")});
  scene.see.that(scene.alive(scene.core()), "the Core runs");
}

void registeringAgain(Scene& scene) {
  const auto before = scene.core();
  scene.left(scene.act("register"), {enabled("register", " kickstart 0")});
  scene.untouched(before);
}

void unregistering(Scene& scene) {
  const auto before = scene.core();
  scene.left(scene.act("unregister"), {"unregister -> status 0 ok Optional(true)"});
  scene.see.that(Scene::eventually([&] { return !scene.alive(before); }, 3s), "the Core is gone");
  scene.see.equal("no Core runs in its place", "0", std::to_string(scene.coreNow()));
}

void unregisteringNothing(Scene& scene) {
  const auto acted = scene.act("unregister");
  scene.see.that(acted.lines.size() == 1, "one line is left", std::to_string(acted.lines.size()) + " lines");
  const auto outcome = acted.outcome();
  scene.see.that(matches("unregister -> status * ok Optional(*)*", outcome), "it is the outcome line",
                 outcome);
  scene.see.fact("unregistering an agent that is not registered", outcome);
}

void statusOfAnEnabledAgent(Scene& scene) {
  const auto before = scene.core();
  scene.left(scene.act("status"), {enabled("status")});
  scene.untouched(before);
}

void reseating(Scene& scene) {
  const auto before = scene.core();
  scene.left(scene.act("reseat"), {hardStop(before, "exited"), enabled("reseat")});
  scene.replaced(before);
}

void restarting(Scene& scene) {
  const auto before = scene.core();
  scene.left(scene.act("restart"),
             {definition("false"), hardStop(before, "exited"), enabled("restart", " kickstart 0")});
  scene.replaced(before);
}

void synchronising(Scene& scene) {
  const auto before = scene.core();
  scene.left(scene.act("sync"), {definition("false"), enabled("sync")});
  scene.untouched(before);
}

void anUnknownAction(Scene& scene) {
  const auto before = scene.core();
  scene.left(scene.act("audit-install"), {"audit-install -> status 1 ok Optional(false) error TamoCore 64"});
  scene.untouched(before);
}

/// A system may take a word that is no switch for a document to open.
void aWordMore(Scene& scene) {
  const auto acted = scene.finish(scene.begin(Start{.arguments = {"stray", "--core-action", "status"}}));
  scene.left(acted, {enabled("status")});
  scene.see.fact("a status with a word more took", std::to_string(acted.after.count()) + " ms");
}

void noActionAtAll(Scene& scene) {
  scene.left(scene.finish(scene.begin(Start{})), {enabled("register")});
  scene.see.that(scene.alive(scene.core()), "the Core runs");
}

void theMoveOfTheInstalledCopy(Scene& scene) {
  scene.left(scene.act("move-to-applications"), {"error move refused: this Tamo doesn't need moving"});
}

}  // namespace

Theme actionChecks() {
  using enum Setting;
  return {"actions",
          {{"status-before-registering",
            "An agent that was never registered has the status 0 or 3, and nothing starts.", Installed,
            statusOfAnAgentNeverRegistered},
           {"register", "Registering enables the agent, and its Core runs.", Installed, registering},
           {"register-again", "Registering again kickstarts the Core that runs, which stays the same.",
            Registered, registeringAgain},
           {"unregister", "Unregistering ends the Core.", Registered, unregistering},
           {"unregister-nothing", "Unregistering what is not registered leaves one outcome line.", Installed,
            unregisteringNothing},
           {"status", "The status of an enabled agent is 1, and nothing is touched.", Registered,
            statusOfAnEnabledAgent},
           {"reseat", "Reseating replaces the Core.", Registered, reseating},
           {"restart", "A restart replaces a Core that obeys, under the eyes of a hard stop.", Registered,
            restarting},
           {"sync", "Synchronising an unchanged definition touches nothing.", Registered, synchronising},
           {"unknown-action", "An action that nobody knows is an error of our own, TamoCore 64.", Registered,
            anUnknownAction},
           {"word-more", "A word more among the arguments is no document to open.", Registered, aWordMore},
           {"default-action", "Without an action the installed copy registers.", Installed, noActionAtAll},
           {"move-of-the-installed-copy", "The installed copy refuses to move.", Installed,
            theMoveOfTheInstalledCopy}}};
}

}  // namespace tamo::acceptance
