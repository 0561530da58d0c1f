#include "acceptance/check.hpp"
#include "acceptance/line_text.hpp"
#include "acceptance/lock_holder.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono_literals;

void approvalWithheld(Scene& scene) {
  scene.place.user.approve(false);
  scene.ended(scene.act("status"), "status -> status * ok Optional(true)");
  const auto acted = scene.act("register");
  scene.ended(acted, "register -> status 2 ok Optional(false)*");
  scene.see.fact("registering with the approval withheld", acted.outcome());
  scene.see.equal("no Core runs", "0", std::to_string(scene.coreNow()));
  scene.place.user.approve(true);
  scene.act("register");
  scene.ended(scene.act("status"), enabled("status"));
  scene.see.that(scene.alive(scene.core()), "the Core runs once it is allowed");
}

/// Waits for the end of the other user's companion while this user's lock is held; what waits for it all the same goes
/// on when it is free, so that what it does then is seen as well.
void awaitOtherUser(Scene& scene, LockHolder& lock) {
  const auto over = [&] { return scene.place.otherUser.ended(); };
  const bool soon = Scene::eventually(over, 30s);
  scene.see.that(soon, "the other user's companion does not wait for this user's lock",
                 soon ? "" : "it still ran after 30 s");
  lock.release();
  scene.see.that(soon || Scene::eventually(over, 90s), "the other user's companion ends");
}

/// The action that would do most harm if it were aimed at the wrong user, and leaves nothing in the other one's account.
void besideAnotherUser(Scene& scene) {
  const auto before = scene.core();
  const auto events = joined(scene.place.core.events());
  LockHolder lock(scene.place.paths.lockFile);
  scene.place.otherUser.start("unregister");
  awaitOtherUser(scene, lock);
  const auto lines = scene.place.otherUser.lines();
  scene.see.keep("other-user.txt", lineText(lines));
  const auto outcome = lines.empty() ? "" : comparable(lines.back());
  scene.see.that(matches("unregister*", outcome), "the other user's companion tells its outcome", outcome);
  scene.see.fact("unregistering by another user, who registered nothing", outcome);
  scene.untouched(before);
  scene.see.equal("nobody asked anything of this user's Core", events, joined(scene.place.core.events()));
  scene.ended(scene.act("status"), enabled("status"));
}

void theSignature(Scene& scene) {
  const auto signature = scene.place.copies.signature(Copy::Installed);
  scene.see.equal("the signature of the installed copy holds", "", signature.fault);
  const auto print = scene.place.job.print().text;
  const auto at = print.find("\"signing-identifier\" => \"");
  const auto line = at == std::string::npos ? "no such line" : print.substr(at, print.find('\n', at) - at);
  scene.see.fact("the signing identifier in the print of the job", line);
  scene.see.fact("the signing identifier that codesign shows of the agent", signature.agentIdentifier);
}

void asleepInTheGrace(Scene& scene) {
  const auto before = scene.freshCore("term=ignore");
  const auto going = scene.begin("restart");
  Scene::pause(1s);
  scene.place.user.sleepAWhile();
  const auto acted = scene.finish(going);
  scene.see.fact("a restart during which the machine slept", acted.outcome());
  const auto killed = hardStop(before, "killedGroup(" + std::to_string(before) + ", gone: true)");
  const bool told =
      acted.lines.size() == 3 && (comparable(acted.lines.at(1)) == killed ||
                                  comparable(acted.lines.at(1)) == hardStop(before, "cancelled"));
  scene.see.that(told, "the hard stop killed the Core on waking, or was called off",
                 acted.lines.size() < 2 ? "" : comparable(acted.lines.at(1)));
  scene.replaced(before);
}

/// The next check could not see a condition that ended a companion if its line were not found.
void theLastWords(Scene& scene) {
  const auto since = scene.place.evidence.now();
  scene.place.faults.leaveLastWords("said for a check");
  const auto noted = joined(scene.place.evidence.crashes(since));
  scene.see.fact("the line of what is fatal, as the log gives it", noted);
  scene.see.that(noted.contains("fatal: said for a check"), "the line is found at fault level", noted);
}

/// After a companion of each kind.
void nothingEndedByItself(Scene& scene) {
  const auto since = scene.place.evidence.now();
  for (const auto* action :
       {"register", "status", "sync", "reseat", "restart", "audit-install", "unregister"})
    scene.act(action);
  const auto noted = joined(scene.place.evidence.crashes(since));
  scene.see.equal("no companion was ended by a condition of its own or by a signal", "", noted);
}

}  // namespace

Theme systemChecks() {
  using enum Setting;
  return {
      "system",
      {{"approval", "With the approval withheld nothing starts; given back, the Core runs.", Installed,
        approvalWithheld, false,
        "Switch Tamo off, and later on again, in System Settings, General, Login Items (& Extensions)."},
       {"second-user", "What another user's companion does touches neither this user's lock nor the Core.",
        Registered, besideAnotherUser, false,
        "Log in as another user as well, and type there what the command shows."},
       {"signature", "The signature of the installed copy holds.", Registered, theSignature},
       {"sleep-in-the-grace", "A machine that sleeps in the grace kills on waking, or not at all.",
        Registered, asleepInTheGrace, true, "The machine goes to sleep; wake it after a minute."},
       {"last-words", "What is fatal leaves a line at fault level.", Installed, theLastWords},
       {"nothing-ended-by-itself", "No action ends by a fault or a signal.", Installed,
        nothingEndedByItself}}};
}

}  // namespace tamo::acceptance
