#include <algorithm>

#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"
#include "platform/log_text.hpp"

namespace tamo::acceptance {
namespace {

const std::vector<Mark>& outcomeMarks() {
  static const auto marks = marksOfFormat(platform::formatText(platform::LogFormat::outcome));
  return marks;
}

void theDescriptionOfAnError(Scene& scene) {
  const auto acted = scene.act("audit-install");
  if (!scene.ended(acted, "audit-install -> status * ok Optional(false) error TamoCore 64*")) return;
  const auto line = *std::ranges::find_if(acted.lines, endsAction);
  scene.see.that(line.text.ends_with("<private>"), "the description reads <private>", line.text);
  scene.see.that(!line.text.contains("Unknown"), "no word of the description can be read", line.text);
  scene.see.that(line.marks == outcomeMarks(), "the last argument alone is private");
}

void anErrorOfTheSystem(Scene& scene) {
  scene.place.faults.failNextRegister("SMAppServiceErrorDomain", 1, "Operation not permitted");
  const auto acted = scene.act("register");
  scene.left(acted, {"register -> status * ok Optional(false) error SMAppServiceErrorDomain 1"});
  const auto text = acted.lines.empty() ? "" : acted.lines.back().text;
  scene.see.that(text.ends_with("1<private>"), "domain and code can be read, the description not", text);
}

void levelsAndMarks(Scene& scene) {
  using platform::LogFormat;
  const auto acted = scene.act("restart");
  const auto formats = {LogFormat::definition, LogFormat::hardStop, LogFormat::outcome};
  if (!scene.see.equal("three lines are left", "3", std::to_string(acted.lines.size()))) return;
  auto line = acted.lines.begin();
  for (const auto format : formats) {
    scene.see.that(line->level == Level::Default, "the line has the level default", line->text);
    scene.see.that(line->marks == marksOfFormat(platform::formatText(format)),
                   "its arguments are marked as meant", line->text);
    ++line;
  }
}

void whatASuccessHides(Scene& scene) {
  const auto acted = scene.act("status");
  if (!scene.ended(acted, enabled("status"))) return;
  scene.see.fact("how an empty private argument is shown",
                 acted.lines.front().text.ends_with("<private>") ? "<private>" : "nothing");
  scene.see.that(acted.lines.front().marks == outcomeMarks(),
                 "its place in the line is private all the same");
}

void aLineFeed(Scene& scene) {
  const std::string name = "x\nregister -> status 1 ok Optional(true)";
  const auto acted = scene.act(name);
  scene.see.equal("the structured log has one line", "1", std::to_string(acted.lines.size()));
  scene.ended(acted, name + " -> status 1 ok Optional(false) error TamoCore 64");
}

}  // namespace

Theme privacyChecks() {
  using enum Setting;
  return {
      "privacy",
      {{"private-description", "The description of an error is private; its domain and code are not.",
        Registered, theDescriptionOfAnError},
       {"private-system-error", "An error of the system is told by domain and code alone.", Installed,
        anErrorOfTheSystem},
       {"private-success", "A success keeps the private place of its line.", Registered, whatASuccessHides},
       {"levels-and-marks", "Every line of a restart has its level and its marks.", Registered,
        levelsAndMarks},
       {"line-feed", "A line feed in a name stays within one line of the structured log.", Registered,
        aLineFeed}}};
}

}  // namespace tamo::acceptance
