#include "acceptance/stage/canaries.hpp"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "platform/posix/posix_files.hpp"

namespace tamo::acceptance {
namespace {

using stage::StageRoot;

constexpr std::string_view linesDiffer = "the companion leaves exactly these lines";
constexpr std::string_view endDiffers = "the action ends with this line";

void refusesToRegister(const StageRoot& root) {
  root.set("next-register-error", "SMAppServiceErrorDomain\t1\tOperation not permitted");
}
void refusesToUnregister(const StageRoot& root) {
  root.set("next-unregister-error", "SMAppServiceErrorDomain\t1\tOperation not permitted");
}
void forgetsTheAgent(const StageRoot& root) {
  for (const auto& record : std::filesystem::directory_iterator(root.control("services")))
    std::filesystem::remove(record.path());
}
void losesTheList(const StageRoot& root) {
  std::filesystem::remove_all(root.host(
      "/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app/Contents/Library/LaunchAgents"));
}
void knowsAnotherStatus(const StageRoot& root) {
  root.set("never-registered-status", "1");
}
void knowsAnOddStatus(const StageRoot& root) {
  root.set("never-registered-status", "2");
}
void failsToKickstart(const StageRoot& root) {
  root.set("tool-launchctl", "kickstart fail 5");
}
void failsToPrint(const StageRoot& root) {
  root.set("tool-launchctl", "print fail 1");
}
void printsAnyJob(const StageRoot& root) {
  root.set("tool-launchctl", "print fail 0");
}
void printsAnotherJob(const StageRoot& root) {
  static_cast<void>(
      platform::posix::writeAtomically(root.host("/private/tmp/lie.txt"),
                                       "gui/501/studio.pell.tamo.core = {\n\targuments = "
                                       "{\n\t\t/bin/another\n\t}\n\n\texit timeout = 7\n\tpid = 1\n}\n"));
  root.set("tool-launchctl", "print lie /private/tmp/lie.txt");
}
void hasNoTemporaryDirectory(const StageRoot& root) {
  root.set("temporary-directory", "none");
}
void hasAnotherTemporaryDirectory(const StageRoot& root) {
  root.set("temporary-directory", "/private/tmp/");
}
void showsPrivateTexts(const StageRoot& root) {
  root.set("log-private", "shown");
}
void opensNothing(const StageRoot& root) {
  root.set("next-open-error", "NSCocoaErrorDomain\t256\tThe application could not be opened.");
}
void copiesNothing(const StageRoot& root) {
  root.set("tool-ditto", "* fail 1");
}
void clearsNoMark(const StageRoot& root) {
  root.set("tool-xattr", "* fail 1");
}
void asksNobody(const StageRoot& root) {
  root.set("tool-osascript", "* fail 1");
}
void installsTheNewer(const StageRoot& root) {
  std::filesystem::remove_all(root.host("/Users/tamo/Downloads/Tamo.app/Contents/Info.plist"));
}

Canary planted(std::string_view check, std::string_view lie, void (*plant)(const StageRoot&),
               std::string_view finds) {
  return {check, lie, {.plant = plant}, finds};
}

Canary behaving(std::string_view check, std::string_view words, std::string_view finds) {
  return {check, "the Core behaves otherwise than ordered", {.core = std::string(words)}, finds};
}

/// Whoever acts in another session acts in this one.
Canary crossing(std::string_view check, std::string_view finds) {
  return {check, "the other user is in this user's own session", {.oneSession = true}, finds};
}

Canary acting(std::string_view check) {
  return {check,
          "the copy in Downloads holds a companion that may act anywhere",
          {.companion = stage::Companion::Proof},
          linesDiffer};
}

std::vector<Canary> actionCanaries() {
  return {planted("status-before-registering", "the status is odd", knowsAnOddStatus,
                  "the status is 0 or 3, and ok"),
          planted("register", "registering fails", refusesToRegister, linesDiffer),
          planted("register-again", "a kickstart fails", failsToKickstart, linesDiffer),
          planted("unregister", "unregistering fails", refusesToUnregister, linesDiffer),
          planted("unregister-nothing", "the companion stops for want of a folder", hasNoTemporaryDirectory,
                  "one line is left"),
          planted("status", "the registration is forgotten", forgetsTheAgent, linesDiffer),
          planted("reseat", "registering fails", refusesToRegister, linesDiffer),
          planted("restart", "a kickstart fails", failsToKickstart, linesDiffer),
          planted("sync", "another job is printed", printsAnotherJob, linesDiffer),
          planted("unknown-action", "the registration is forgotten", forgetsTheAgent, linesDiffer),
          planted("word-more", "the registration is forgotten", forgetsTheAgent, linesDiffer),
          planted("default-action", "registering fails", refusesToRegister, linesDiffer),
          planted("move-of-the-installed-copy", "the companion stops for want of a folder",
                  hasNoTemporaryDirectory, linesDiffer)};
}

std::vector<Canary> sequenceCanaries() {
  std::vector<Canary> canaries;
  for (const auto* check :
       {"register-register", "register-status", "unregister-register", "unregister-unregister",
        "unregister-status", "status-register", "status-unregister", "status-status"})
    canaries.push_back(planted(check, "the first registering fails", refusesToRegister, endDiffers));
  canaries.push_back(
      planted("register-unregister", "the first unregistering fails", refusesToUnregister, endDiffers));
  return canaries;
}

std::vector<Canary> hardStopCanaries() {
  return {behaving("stop-exited-late", "term=ignore", linesDiffer),
          behaving("stop-killed-group", "term=obey children=2", linesDiffer),
          behaving("stop-killed-process", "term=obey group=parent", linesDiffer),
          behaving("stop-helper-outside", "term=ignore children=1", "the helper that left the group lives"),
          behaving("stop-self-stopped", "term=obey", linesDiffer),
          planted("stop-hung", "a kickstart fails", failsToKickstart,
                  "the hard stop killed it, or launchd was faster"),
          behaving("stop-under-reseat", "term=obey", linesDiffer),
          behaving("stop-cancelled-restart", "term=ignore dies-after:300", "the same Core runs"),
          behaving("stop-cancelled-reseat", "term=ignore dies-after:300", "the same Core runs"),
          behaving("spared-revert", "term=late:3200", linesDiffer),
          behaving("spared-revert-stays", "term=revert:3200", linesDiffer),
          behaving("spared-release", "term=obey", linesDiffer),
          behaving("spared-release-stays", "term=late:3200", linesDiffer),
          behaving("spared-young", "term=obey", linesDiffer),
          behaving("spared-young-stays", "term=late:3200", linesDiffer)};
}

std::vector<Canary> definitionCanaries() {
  return {planted("reseat-many-times", "the agent's list is lost", losesTheList,
                  "registering once more mends a reseat that failed"),
          planted("definition-timeout", "registering fails", refusesToRegister, linesDiffer),
          planted("definition-arguments", "unregistering fails", refusesToUnregister, linesDiffer),
          planted("definition-restart", "launchctl prints nothing", failsToPrint, linesDiffer),
          planted("definition-binary", "another job is printed", printsAnotherJob, linesDiffer),
          planted("executable-changed", "registering fails", refusesToRegister, endDiffers),
          planted("copy-replaced", "unregistering fails", refusesToUnregister, endDiffers)};
}

std::vector<Canary> urlCanaries() {
  return {planted("url-starts", "the registration is forgotten", forgetsTheAgent,
                  "the URL is the action of the process that it starts"),
          planted("url-last-wins", "the registration is forgotten", forgetsTheAgent,
                  "one process, and the last URL wins"),
          planted("url-within", "the registration is forgotten", forgetsTheAgent, endDiffers),
          planted("url-late", "a kickstart fails", failsToKickstart, linesDiffer),
          planted("url-burst", "the registration is forgotten", forgetsTheAgent,
                  "every line is one of the status that was asked for"),
          planted("url-unknown", "a kickstart fails", failsToKickstart, "the default action is carried out"),
          acting("url-refused-copy"),
          planted("url-again-and-again", "the registration is forgotten", forgetsTheAgent,
                  "a late URL leads to the default action"),
          acting("copy-refused"),
          planted("copy-status", "launchctl prints nothing", failsToPrint, "the same Core runs"),
          planted("copy-staged", "another status is told", knowsAnotherStatus, linesDiffer)};
}

std::vector<Canary> crowdCanaries() {
  return {planted("two-at-once", "a kickstart fails", failsToKickstart, "each leaves its outcome line"),
          planted("eight-at-once", "a kickstart fails", failsToKickstart, "each leaves its outcome line"),
          planted("lock-held", "the lock lies elsewhere", hasAnotherTemporaryDirectory,
                  "it waits for a minute, and no longer"),
          planted("lock-released", "the lock lies elsewhere", hasAnotherTemporaryDirectory,
                  "nothing is done while the lock is held"),
          planted("lock-status", "the registration is forgotten", forgetsTheAgent, linesDiffer)};
}

std::vector<Canary> printCanaries() {
  return {planted("print-running", "another job is printed", printsAnotherJob,
                  "the readers see the pid, the timeout and the arguments"),
          planted("print-not-loaded", "every job is printed", printsAnyJob,
                  "launchctl ends with the status of a job that is not there"),
          planted("private-description", "private texts are shown", showsPrivateTexts,
                  "no word of the description can be read"),
          planted("private-system-error", "private texts are shown", showsPrivateTexts, linesDiffer),
          planted("private-success", "the registration is forgotten", forgetsTheAgent, endDiffers),
          planted("levels-and-marks", "launchctl prints nothing", failsToPrint, "three lines are left"),
          planted("line-feed", "the registration is forgotten", forgetsTheAgent, endDiffers)};
}

std::vector<Canary> moveCanaries() {
  return {
      planted("move-copies", "nothing is copied", copiesNothing, linesDiffer),
      planted("move-by-default", "nothing is opened", opensNothing, "the installed copy is in front"),
      planted("move-clears-the-mark", "no mark is cleared", clearsNoMark,
              "no file of the installed copy carries the mark"),
      planted("move-replaces", "the build of the copy cannot be read", installsTheNewer, linesDiffer),
      planted("move-opens", "nothing is opened", opensNothing, "the installed copy is in front"),
      planted("move-waits", "nothing is copied", copiesNothing,
              "the result is recorded before the old copy has quit"),
      planted("move-waits-no-longer", "nothing is copied", copiesNothing,
              "it waits for half a minute, and no longer"),
      planted("move-administrator", "the prompt cannot be asked", asksNobody, linesDiffer),
      planted("move-cancelled", "the prompt cannot be asked", asksNobody, linesDiffer),
      planted("move-translocated", "nothing is copied", copiesNothing, linesDiffer),
      planted("approval", "registering fails", refusesToRegister, endDiffers),
      crossing("second-user", "the same Core runs"),
      planted("nothing-ended-by-itself", "the companions stop for want of a folder", hasNoTemporaryDirectory,
              "no companion was ended by a condition of its own or by a signal")};
}

}  // namespace

const std::vector<Canary>& allCanaries() {
  static const auto canaries = [] {
    std::vector<Canary> all;
    for (const auto& some : {actionCanaries(), sequenceCanaries(), hardStopCanaries(), definitionCanaries(),
                             urlCanaries(), crowdCanaries(), printCanaries(), moveCanaries()})
      all.insert(all.end(), some.begin(), some.end());
    return all;
  }();
  return canaries;
}

std::string_view sparedBy(const Lie& lie) {
  using Plant = void (*)(const StageRoot&);
  static const std::vector<std::pair<Plant, std::string_view>> spared{
      {forgetsTheAgent, "register"},
      {losesTheList, "move-of-the-installed-copy"},
      {failsToPrint, "move-of-the-installed-copy"},
      {printsAnyJob, "move-of-the-installed-copy"},
      {printsAnotherJob, "move-of-the-installed-copy"},
      {hasNoTemporaryDirectory, "print-not-loaded"},
      {copiesNothing, "move-opens"},
      {opensNothing, "move-cancelled"},
      {clearsNoMark, "move-copies"},
      {asksNobody, "move-copies"}};
  const auto found = std::ranges::find(spared, lie.plant, &std::pair<Plant, std::string_view>::first);
  return found == spared.end() ? "status" : found->second;
}

std::vector<const Canary*> oneOfEachLie() {
  std::vector<const Canary*> kinds;
  for (const auto& canary : allCanaries()) {
    const auto alike = [&](const Canary* other) { return other->plant == canary.plant; };
    if (std::ranges::none_of(kinds, alike)) kinds.push_back(&canary);
  }
  return kinds;
}

const Canary* canaryOf(std::string_view check) {
  const auto found = std::ranges::find(allCanaries(), check, &Canary::check);
  return found == allCanaries().end() ? nullptr : &*found;
}

const std::vector<std::string_view>& notForStages() {
  static const std::vector<std::string_view> checks{"copy-in-small-letters", "signature",
                                                    "sleep-in-the-grace", "last-words"};
  return checks;
}

}  // namespace tamo::acceptance
