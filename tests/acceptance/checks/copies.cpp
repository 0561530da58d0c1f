#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

void aDownloadedCopy(Scene& scene) {
  scene.place.copies.place({.copy = Copy::Downloaded, .build = "5000"});
  const auto before = scene.core();
  scene.left(scene.act("restart", Copy::Downloaded),
             {"error restart refused: tamo.test_copy_refused_live_data app=" +
              scene.place.copies.path(Copy::Downloaded) +
              " (only /Applications/Tamo.app opens the founder's data and Core)"});
  scene.untouched(before);
}

void theStatusOfADownloadedCopy(Scene& scene) {
  scene.place.copies.place({.copy = Copy::Downloaded, .build = "5000"});
  const auto before = scene.core();
  const auto acted = scene.act("status", Copy::Downloaded);
  scene.left(acted, {"status -> status * ok Optional(true)"});
  scene.see.fact("the status as another copy sees it", acted.outcome());
  scene.untouched(before);
}

/// Whether the system tells the companion the path as it was asked or as it lies on the disk is a fact: by the first
/// the copy may not act, and says so.
void theInstalledCopyInSmallLetters(Scene& scene) {
  const auto before = scene.core();
  const auto acted = scene.act("sync", Copy::InstalledInSmallLetters);
  const auto outcome = acted.outcome();
  scene.see.that(outcome == enabled("sync") || outcome.starts_with("error sync refused: "),
                 "it acts or is refused", outcome);
  scene.see.fact("an action of the installed copy by its path in small letters", outcome);
  scene.untouched(before);
}

/// A sync touches nothing while the agent is not registered, so it shows who may act without acting.
void theStagedCopy(Scene& scene) {
  scene.place.copies.place({.copy = Copy::Staged, .build = "5000"});
  scene.left(scene.act("sync", Copy::Staged), {"sync -> status * ok Optional(false)"});
}

}  // namespace

Theme copyChecks() {
  using enum Setting;
  return {
      "copies",
      {{"copy-refused", "A copy in Downloads may not act, and says so at error level.", Registered,
        aDownloadedCopy},
       {"copy-status", "A copy in Downloads may ask for the status.", Registered, theStatusOfADownloadedCopy},
       {"copy-in-small-letters", "The installed copy acts, or is refused, by its path in small letters.",
        Registered, theInstalledCopyInSmallLetters},
       {"copy-staged", "The copy that is staged in the data directory may act.", Installed, theStagedCopy}}};
}

}  // namespace tamo::acceptance
