#include "platform/stage/launchd_wire.hpp"
#include "stage/common/stage_error.hpp"
#include "stage/common/tool_fault.hpp"
#include "stage/common/words.hpp"
#include "stage/control/stage_commands.hpp"
#include "stage/control/stage_layout.hpp"
#include "stage/core/core_behaviour.hpp"
#include "values/paths.hpp"
#include "values/text.hpp"

namespace tamo::stage {
namespace {

/// An empty setting and none are the same to who reads it; only none leaves no trace in the list of settings.
void setOrClear(const StageRoot& root, const std::string& name, const std::string& value) {
  root.set(name, value.empty() ? std::nullopt : std::optional<std::string_view>(value));
}

/// Looked at now, because the Core that will read it has nobody to tell.
int core(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto words = joinedWords(arguments.takeRest());
  const auto behaviour = coreBehaviour(words);
  if (!behaviour) throw UsageError("\"" + behaviour.error() + "\" is no behaviour of the Core");
  setOrClear(root, "core", words);
  return 0;
}

/// Withheld approval shows at the next registering. Granted approval has to be told, because launchd then
/// loads what waits for it.
int approval(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto word = arguments.takeOneOf("approval", {"granted", "withheld"});
  arguments.finish();
  setOrClear(root, "approval", word == "withheld" ? word : "");
  if (word == "granted" && !askLaunchd(root, {"approve"})) throw StageError("launchd doesn't answer");
  return 0;
}

/// An error travels as one line with tabs between its parts.
int order(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto operation = arguments.takeOneOf("operation", {"register", "unregister", "open"});
  const auto domain = arguments.take("domain");
  const auto code = arguments.take("code");
  const auto text = arguments.take("text");
  arguments.finish();
  if (!values::decimalInt64(code)) throw UsageError("\"" + code + "\" is no code");
  if ((domain + text).find_first_of("\t\n") != std::string::npos)
    throw UsageError("an error holds no tab and no line break");
  root.set("next-" + operation + "-error", domain + "\t" + code + "\t" + text);
  return 0;
}

int tool(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto name = arguments.takeOneOf("tool", {"launchctl", "ditto", "xattr", "osascript"});
  const auto verb = arguments.takeNextOption("--on");
  const auto words = joinedWords(arguments.takeRest());
  if (words.empty()) throw UsageError("missing fault");
  // A fault is read here as the tool will read it, for the tool would take an unknown one for none.
  const bool real = words == "real";
  if (!real && !toolFault(words)) throw UsageError("\"" + words + "\" is no fault");
  const auto setting = "tool-" + name;
  // Real for no verb in particular is real for all.
  if (real && !verb) {
    setOrClear(root, setting, "");
    return 0;
  }
  const auto fault = real ? std::nullopt : std::optional<std::string_view>(words);
  setOrClear(root, setting, withToolFault(root.setting(setting, ""), verb.value_or("*"), fault));
  return 0;
}

/// A setting is a file, so a name that leads elsewhere is none.
int set(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  const auto name = arguments.take("setting");
  const auto value = arguments.takeAny();
  arguments.finish();
  if (name.empty() || name.contains('/') || name.starts_with("."))
    throw UsageError("\"" + name + "\" is no setting");
  root.set(name, value);
  return 0;
}

}  // namespace

std::vector<StageCommand> steeringCommands() {
  return {{"core", "R WORD…",
           "how the Core behaves from its next start on: term=obey|ignore|late:MS|revert:MS\n"
           "children=N[:leave|:orphan] group=own|parent stops-itself dies-after:MS[:CODE]\n"
           "sockets=both|core|talk|none starts-slowly:MS; no word: as usual",
           core},
          {"approval", "R granted|withheld", "the user's word on login items", approval},
          {"order", "R register|unregister|open DOMAIN CODE TEXT", "an error for the next one", order},
          {"tool", "R launchctl|ditto|xattr|osascript [--on VERB] FAULT",
           "hang [hard] | hold MS | fail N | slow MS | pause | flood BYTES | lie FILE [N] | die SIGNAL |\n"
           "cut BYTES | real",
           tool},
          {"set", "R NAME [VALUE]", "set a setting, or clear it", set}};
}

}  // namespace tamo::stage
