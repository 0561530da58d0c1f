#include <algorithm>

#include "fuzz/insist.hpp"
#include "fuzz/script_of_a_move.hpp"
#include "fuzz/shell_words.hpp"
#include "fuzz/target.hpp"
#include "stage/tools/apple_script.hpp"

/// The way of two paths through the move's script into the administrator's shell, and the stage's reader of
/// scripts. The input is texts, divided by zero bytes: the two paths, then a script of any kind.
namespace tamo::fuzz {
namespace {

using Words = std::vector<std::string>;

constexpr auto stageDirectory = "/tmp/it's a stage";

/// The shell must get the tools' names as the script's author wrote them, and each path as one word.
void carriesPaths(const std::string& source, const std::string& to) {
  const auto request = stage::shellRequest(scriptOfAMove(), {source, to});
  insist(request.has_value(), "the move's script is understood");
  insist(request->asAdministrator && request->prompt.has_value(), "the administrator is asked");
  const Words expected{"/usr/bin/ditto",       source, to, "&&", "/usr/bin/xattr", "-dr",
                       "com.apple.quarantine", to};
  insist(shellWords(stage::joined(request->command)) == expected, "the shell's words are the paths");

  auto onStage = expected;
  onStage[0].insert(0, stageDirectory);
  onStage[4].insert(0, stageDirectory);
  insist(shellWords(stage::commandOnStage(request->command, stageDirectory)) == onStage,
         "the tools are the stage's, the paths are what they were");
}

/// A text that is no whole script stands as the statement of one.
void understands(const std::string& text, const Words& arguments) {
  const auto script =
      text.starts_with("on run") ? text : "on run argv\ndo shell script " + text + "\nend run\n";
  const auto request = stage::shellRequest(script, arguments);
  insist(request || request.error().number == -2741 || request.error().number == -1728,
         "an error is one of two");
}

}  // namespace

void readInput(std::string_view bytes) {
  auto texts = dividedByZeroBytes(bytes);
  texts.resize(std::max<std::size_t>(texts.size(), 3));
  carriesPaths(texts[0], texts[1]);
  understands(texts[2], {texts[0], texts[1]});
  insist(shellWords(stage::quotedForm(texts[0])) == Words{texts[0]}, "a quoted text is one word");
}

}  // namespace tamo::fuzz
