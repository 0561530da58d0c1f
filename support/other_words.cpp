#include "support/other_words.hpp"

#include "move/app_move.hpp"
#include "support/headings.hpp"

namespace tamo::support {
namespace {

namespace Code = AppMove::Code;

Advice refusedInstalledCopy() {
  return {
      .heading = heading::refused,
      .meaning =
          "It lies where it may act, and was refused all the same: its bundle identifier is another than the "
          "release's, or the folder is reached through a link.",
      .next =
          "Check the identifier in its Info.plist and that /Applications/Tamo.app is no link; or install "
          "Tamo afresh."};
}

/// Both ways out are told: a copy in /Applications is run from elsewhere too while it has the mark, and moving it there
/// again changes nothing.
Advice refusedTranslocatedCopy() {
  return {
      .heading = heading::refused,
      .meaning =
          "The system runs this copy from a place of its own, because it still has the mark of a download.",
      .next =
          "Have the user move Tamo into /Applications with the Finder, or let Tamo move itself. If it is "
          "there "
          "already: xattr -dr com.apple.quarantine /Applications/Tamo.app, quit Tamo and open it again."};
}

Advice refusedOtherCopy() {
  return {
      .heading = heading::refused,
      .meaning =
          "Only /Applications/Tamo.app, or the copy staged in the user's data, may act on the agent; this is "
          "another copy. Nothing was touched.",
      .next = "Remove that copy, or open the installed one by its path."};
}

std::string_view moveMeans(std::string_view code) {
  if (code == Code::moved)
    return "It was copied into /Applications; the copy that it came from went to the Trash.";
  if (code == Code::opened)
    return "Nothing was copied: /Applications has a Tamo of the same or a newer build, or one whose build "
           "cannot be read. "
           "That one is opened.";
  if (code == Code::cancelled)
    return "The prompt for an administrator's password was cancelled; nothing was moved.";
  if (code == Code::notWritable)
    return "The older installed Tamo could not be put into the Trash, or copying with an administrator's "
           "rights failed.";
  if (code == Code::copyFailed) return "Copying failed although the folder may be written to.";
  return "This is a code that is not known here.";
}

}  // namespace

std::string refusedStep(const RefusedSaid& said) {
  return "Refused, because this copy of Tamo may not act: " + said.app.value_or(said.why) + ".";
}

std::string moveResultStep(const MoveResultSaid& said) {
  return "The move ended with the code " + said.code + ". " + std::string(moveMeans(said.code));
}

std::string moveResultVerdict(const MoveResultSaid& said) {
  return AppMove::resultOf(said.code).ok ? "done" : "not done";
}

/// The line doesn't say which rule refused a copy, so that is told from where the copy lies: what is translocated runs
/// from a folder of that name, and what lies where it may act failed by another rule.
void addRefusedAdvice(Story& story, const RefusedSaid& said) {
  if (!said.app)
    return add(story, {.heading = heading::refused,
                       .meaning = "This copy of Tamo may not act. Nothing was touched."});
  if (said.app->contains("/AppTranslocation/")) return add(story, refusedTranslocatedCopy());
  add(story, *said.app == AppMove::destination ? refusedInstalledCopy() : refusedOtherCopy());
}

/// An unfinished copy is named because the next move would find an installed Tamo whose build cannot be read, and would
/// only open that.
void addMoveResultAdvice(Story& story, const MoveResultSaid& said) {
  if (said.code == Code::moved) return;
  if (said.code == Code::opened)
    return add(
        story,
        {.heading = heading::movedAgain,
         .meaning = "If this comes at every start, the installed copy still has its mark of a download.",
         .next = "In that case: xattr -dr com.apple.quarantine /Applications/Tamo.app, quit Tamo and open it "
                 "again."});
  const bool cancelled = said.code == Code::cancelled;
  add(story,
      {.heading = heading::moveEnded,
       .meaning = "Tamo is still where it was.",
       .next =
           cancelled
               ? "Open Tamo again and give the password, or drag it into Applications in the Finder."
               : "Drag Tamo into Applications in the Finder, as somebody who may write there. An unfinished "
                 "/Applications/Tamo.app goes to the Trash first."});
}

void addMoveRefusedAdvice(Story& story) {
  add(story, {.heading = heading::moveEnded,
              .meaning = "The copy is installed or staged already, or it is not a release.",
              .next = "Nothing has to be done."});
}

void addReceiptAdvice(Story& story) {
  add(story, {.heading = heading::receipt,
              .meaning = "The action itself is not touched by that.",
              .next = "See that the disk is not full and that ~/Library/Application Support/TamoPKG1/M2 may "
                      "be written to."});
}

void addFatalAdvice(Story& story) {
  add(story,
      {.heading = heading::noLine,
       .meaning = "The companion met a condition that it doesn't go on with.",
       .next = "Send the line and the newest report of ~/Library/Logs/DiagnosticReports to the developers."});
}

void addNoEndAdvice(Story& story) {
  add(story,
      {.heading = heading::noEnd,
       .meaning =
           "What the action came to is not in this log: the log was cut, the companion was still at work or "
           "was ended by force.",
       .next = "Take a log that reaches further, or ask for status."});
}

}  // namespace tamo::support
