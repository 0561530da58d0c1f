#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>

#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"
#include "platform/bundle_info.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/posix/posix_files.hpp"
#include "values/property_list.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono_literals;

constexpr auto installed = "/Applications/Tamo.app";

std::string recorded(Scene& scene) {
  return platform::posix::readWhole(scene.place.paths.moveResult).value_or("none");
}

std::string resultOf(const std::string& code) {
  const bool ok = code == "moved" || code == "opened";
  return std::string(R"({"ok":)") + (ok ? "true" : "false") + R"(,"code":")" + code + R"("})";
}

/// The build of the copy, or "none" without one.
std::string build(Scene& scene, Copy copy) {
  const auto bytes = platform::posix::readWhole(scene.place.copies.folder(copy) + "/Contents/Info.plist");
  const auto list = bytes ? values::readPropertyList(*bytes) : std::nullopt;
  const auto* version = list ? list->entry("CFBundleVersion") : nullptr;
  return version != nullptr && version->text() != nullptr ? *version->text() : "none";
}

/// A directory that can be found again wherever it is moved to.
platform::Descriptor followed(Scene& scene, Copy copy) {
  return platform::Descriptor(
      ::open(scene.place.copies.folder(copy).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

void liesInTheTrash(Scene& scene, const platform::Descriptor& copy, const std::string& what) {
  const auto now = scene.place.user.whereabouts(copy.get());
  scene.see.that(now.starts_with(scene.place.paths.trash + "/"), what + " lies in the Trash", now);
}

std::vector<pid_t> running(Scene& scene, const std::string& bundle) {
  std::vector<pid_t> pids;
  for (const auto& one : scene.place.user.applications())
    if (one.bundle == bundle) pids.push_back(one.pid);
  return pids;
}

void isInFront(Scene& scene) {
  const bool front = Scene::eventually([&] { return scene.place.user.front() == installed; });
  scene.see.that(front, "the installed copy is in front", scene.place.user.front());
}

/// A move asks a user who is no administrator as well, who may not read the log.
void tells(Scene& scene, const Acted& acted, const std::string& code) {
  if (!acted.unread.empty()) return scene.see.fact("the line of the move", acted.unread);
  scene.left(acted, {"move-to-applications -> " + code});
}

void movedWhole(Scene& scene, const Acted& acted) {
  tells(scene, acted, "moved");
  scene.see.equal("build 5000 is installed", "5000", build(scene, Copy::Installed));
  scene.see.equal("the result is recorded", resultOf("moved"), recorded(scene));
  isInFront(scene);
}

void intoNothing(Scene& scene) {
  const auto old = followed(scene, Copy::Downloaded);
  movedWhole(scene, scene.act("move-to-applications", Copy::Downloaded));
  scene.see.equal("nothing is left in Downloads", "none", build(scene, Copy::Downloaded));
  liesInTheTrash(scene, old, "the copy that it came from");
}

void byDefault(Scene& scene) {
  movedWhole(scene, scene.finish(scene.begin(Start{.copy = Copy::Downloaded})));
}

/// The other moves are of copies without it, so that it is here alone where a system minds it.
void placeMarked(Scene& scene) {
  scene.place.copies.place({.copy = Copy::Downloaded, .build = "5000", .marked = true});
}

void theMark(Scene& scene) {
  placeMarked(scene);
  const auto before = scene.place.copies.marked(Copy::Downloaded);
  scene.see.that(before > 0, "the copy in Downloads carries the mark", std::to_string(before) + " files");
  movedWhole(scene, scene.act("move-to-applications", Copy::Downloaded));
  scene.see.equal("no file of the installed copy carries the mark", "0",
                  std::to_string(scene.place.copies.marked(Copy::Installed)));
}

void overAnOlderOne(Scene& scene) {
  scene.place.copies.place({.build = "4999"});
  const auto older = followed(scene, Copy::Installed);
  movedWhole(scene, scene.act("move-to-applications", Copy::Downloaded));
  liesInTheTrash(scene, older, "the older copy");
}

void besideANewerOne(Scene& scene) {
  scene.place.copies.place({.build = "5001"});
  scene.left(scene.act("move-to-applications", Copy::Downloaded), {"move-to-applications -> opened"});
  scene.see.equal("the installed copy stays", "5001", build(scene, Copy::Installed));
  scene.see.equal("the other one stays", "5000", build(scene, Copy::Downloaded));
  scene.see.equal("the result is recorded", resultOf("opened"), recorded(scene));
  isInFront(scene);
}

/// The pid of the copy's own program, once it runs.
pid_t opened(Scene& scene, Copy copy) {
  scene.place.user.open(copy);
  const auto bundle = scene.place.copies.path(copy);
  scene.see.that(Scene::eventually([&] { return !running(scene, bundle).empty(); }), "the old copy runs");
  const auto pids = running(scene, bundle);
  // It needs a moment until it minds SIGTERM in its own way.
  Scene::pause(500ms);
  return pids.empty() ? 0 : pids.front();
}

void whileTheOldOneQuits(Scene& scene) {
  const auto old = opened(scene, Copy::Downloaded);
  const auto going =
      scene.begin({.copy = Copy::Downloaded, .arguments = {"--core-action", "move-to-applications"}});
  const bool recordedSoon = Scene::eventually([&] { return recorded(scene) == resultOf("moved"); }, 20s);
  scene.see.that(recordedSoon, "the result is recorded before the old copy has quit");
  Scene::pause(1500ms);
  scene.see.that(running(scene, installed).empty(), "the new copy is not opened while the old one runs");
  Scene::signal(old, SIGTERM);
  movedWhole(scene, scene.finish(going));
  scene.see.that(Scene::eventually([&] { return !running(scene, installed).empty(); }), "the new copy runs");
}

void whileTheOldOneStays(Scene& scene) {
  const auto old = opened(scene, Copy::Downloaded);
  const auto acted = scene.act("move-to-applications", Copy::Downloaded);
  movedWhole(scene, acted);
  const auto took = std::to_string(acted.after.count()) + " ms";
  scene.see.that(acted.after >= 30s && acted.after < 45s, "it waits for half a minute, and no longer", took);
  scene.see.that(scene.alive(old), "the old copy runs on");
  const bool beside = Scene::eventually([&] { return !running(scene, installed).empty(); });
  scene.see.that(beside, "the new copy runs beside it");
  scene.see.fact("whether a second copy of the same identifier opens", beside ? "yes" : "no");
  Scene::signal(old, SIGTERM);
}

void withTheAdministrator(Scene& scene) {
  placeMarked(scene);
  scene.place.user.loseApplications("agree");
  movedWhole(scene, scene.act("move-to-applications", Copy::Downloaded));
  scene.see.equal("no file of the installed copy carries the mark", "0",
                  std::to_string(scene.place.copies.marked(Copy::Installed)));
}

void withAPromptThatIsClosed(Scene& scene) {
  scene.place.user.loseApplications("cancel");
  tells(scene, scene.act("move-to-applications", Copy::Downloaded), "cancelled");
  scene.see.equal("nothing is installed", "none", build(scene, Copy::Installed));
  scene.see.equal("the copy stays where it is", "5000", build(scene, Copy::Downloaded));
  scene.see.equal("the result is recorded", resultOf("cancelled"), recorded(scene));
}

void ofATranslocatedCopy(Scene& scene) {
  const auto original = followed(scene, Copy::Downloaded);
  scene.place.copies.place({.copy = Copy::Translocated, .build = "5000"});
  const auto path = scene.place.copies.path(Copy::Translocated);
  scene.see.that(path.contains("/AppTranslocation/"), "the copy runs from a place of the system's own", path);
  movedWhole(scene, scene.act("move-to-applications", Copy::Translocated));
  liesInTheTrash(scene, original, "the copy that it came from");
}

}  // namespace

Theme moveChecks() {
  using enum Setting;
  return {
      "move",
      {{"move-copies",
        "Where nothing is installed the copy is moved whole, and the old one goes to the Trash.", Downloaded,
        intoNothing},
       {"move-by-default", "Without an action a downloaded copy moves.", Downloaded, byDefault},
       {"move-clears-the-mark", "The installed copy does not carry the mark of a download.", Downloaded,
        theMark},
       {"move-replaces", "An older installed copy goes to the Trash.", Downloaded, overAnOlderOne},
       {"move-opens", "A newer installed copy stays and is opened.", Downloaded, besideANewerOne},
       {"move-waits", "The new copy is opened once the old one has quit.", Downloaded, whileTheOldOneQuits},
       {"move-waits-no-longer", "After 30 seconds the new copy is opened although the old one runs.",
        Downloaded, whileTheOldOneStays},
       {"move-cancelled", "A prompt that is closed cancels the move.", Downloaded, withAPromptThatIsClosed,
        false, "When the system asks for an administrator's password, close the prompt."},
       // After the other one of a user who cannot take away again what it installs.
       {"move-administrator", "Where the user may not write, the administrator copies.", Downloaded,
        withTheAdministrator, false,
        "When the system asks for an administrator's password, check that it reads \"Tamo wants to move "
        "itself "
        "into your Applications folder.\", and type it."},
       {"move-translocated", "Of a translocated copy the original goes to the Trash.", Downloaded,
        ofATranslocatedCopy, false, "Open Tamo in the folder that the Finder shows, by a double click."}}};
}

}  // namespace tamo::acceptance
