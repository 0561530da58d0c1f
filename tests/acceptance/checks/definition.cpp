#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

std::string reseated(const std::string& action) {
  return enabled(action, " reseated definition");
}

void aChangedTimeout(Scene& scene) {
  const auto before = scene.core();
  scene.place.copies.define(Copy::Installed, {.exitTimeout = 9});
  scene.left(scene.act("sync"), {"definition: loaded * exit 20 · bundled * exit 9 · changed true",
                                 hardStop(before, "exited"), reseated("sync")});
  scene.replaced(before);
  const auto now = scene.core();
  scene.left(scene.act("sync"),
             {"definition: loaded * exit 9 · bundled * exit 9 · changed false", enabled("sync")});
  scene.untouched(now);
}

void changedArguments(Scene& scene) {
  const auto before = scene.core();
  scene.place.copies.define(Copy::Installed, {.arguments = {"--quiet"}});
  scene.left(scene.act("sync"),
             {"definition: loaded *agent exit 20 · bundled *agent --quiet exit 20 · changed true",
              hardStop(before, "exited"), reseated("sync")});
  scene.replaced(before);
}

void aRestartWithAChangedDefinition(Scene& scene) {
  const auto before = scene.core();
  scene.place.copies.define(Copy::Installed, {.exitTimeout = 9});
  scene.left(scene.act("restart"), {definition("true"), hardStop(before, "exited"), reseated("restart")});
  scene.replaced(before);
}

void anotherForm(Scene& scene) {
  const auto before = scene.core();
  scene.place.copies.define(Copy::Installed, {.binary = true});
  scene.left(scene.act("sync"), {definition("false"), enabled("sync")});
  scene.untouched(before);
}

void anotherExecutable(Scene& scene) {
  const auto before = scene.core();
  scene.place.copies.changeExecutable(Copy::Installed);
  scene.left(scene.act("sync"), {definition("false"), enabled("sync")});
  const auto acted = scene.act("restart");
  scene.see.fact("a restart after the executable alone was changed", acted.outcome());
  scene.see.fact("whether a Core runs after it", scene.coreNow() != 0 ? "yes" : "no");
  scene.ended(scene.act("reseat"), enabled("reseat"));
  scene.replaced(before);
}

void aNewerCopyInItsPlace(Scene& scene) {
  const auto before = scene.core();
  scene.place.copies.place({.build = "4212"});
  scene.ended(scene.act("sync"), enabled("sync"));
  const auto print = scene.place.job.print();
  scene.see.keep("print.txt", print.text);
  scene.see.fact("whether a Core runs after the copy was replaced", scene.coreNow() != 0 ? "yes" : "no");
  scene.ended(scene.act("reseat"), enabled("reseat"));
  scene.replaced(before);
}

}  // namespace

Theme definitionChecks() {
  using enum Setting;
  return {
      "definition",
      {{"definition-timeout", "A changed exit timeout makes a sync reseat, once.", Registered,
        aChangedTimeout, true},
       {"definition-arguments", "Changed arguments make a sync reseat.", Registered, changedArguments, true},
       {"definition-restart", "A restart with a changed definition reseats.", Registered,
        aRestartWithAChangedDefinition, true},
       {"definition-binary", "The same definition in its binary form changes nothing.", Registered,
        anotherForm, true},
       {"executable-changed",
        "An executable that changed without its definition goes unnoticed by a sync; a reseat starts it.",
        Registered, anotherExecutable, true},
       {"copy-replaced", "A newer copy in place of the installed one runs after a reseat at the latest.",
        Registered, aNewerCopyInItsPlace, true}}};
}

}  // namespace tamo::acceptance
