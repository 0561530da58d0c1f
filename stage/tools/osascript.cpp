#include "stage/tools/osascript.hpp"

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <sys/wait.h>
#include <thread>

#include "platform/posix/descriptor.hpp"
#include "platform/posix/posix_files.hpp"
#include "platform/stage/journal.hpp"
#include "platform/stage/launchd_wire.hpp"
#include "stage/common/exit_status.hpp"
#include "stage/common/program_log.hpp"
#include "stage/common/stage_presence.hpp"
#include "stage/common/tool_fault.hpp"
#include "stage/tools/apple_script.hpp"

namespace tamo::stage {
namespace {

struct Answer {
  const char* word;
  const char* error;
  int number;
};
/// What a Mac's interpreter reports: -128 for a prompt that the user closes, and two of the authorization's
/// errors.
constexpr Answer refusals[] = {
    {"cancel", "User canceled.", -128},
    {"refuse", "This user may not act as an administrator.", -60005},
    {"wrong-password", "The administrator user name or password was incorrect.", -60007}};

/// The number in brackets is a Mac's form, and what the companion tells a cancelled prompt by.
int failed(const ScriptError& error) {
  std::cerr << "execution error: " << error.text << " (" << error.number << ")\n";
  return kFailed;
}

/// The user's answer, waited for as long as the prompt is left alone. The stage's end takes the prompt away.
std::string answered(const StageRoot& root) {
  const StagePresence presence(root.directory());
  for (;;) {
    auto answer = root.setting("administrator", "agree");
    if (answer != "wait") return answer;
    if (!presence.isThere()) return "cancel";
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

void note(const StageRoot& root, const std::string& text) {
  const auto path = root.control("prompts");
  const platform::Descriptor log(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  logLine(log.get(), text);
}

/// Absent when the user agrees. The question is noted before the answer is waited for: that is how others see that a
/// prompt is open.
std::optional<ScriptError> askedUser(const StageRoot& root, const std::string& prompt) {
  const Journal journal(root);
  note(root, "asked: " + prompt);
  journal.note("prompt", {prompt});
  const auto answer = answered(root);
  note(root, "answered: " + answer);
  journal.note("answer", {answer});
  for (const auto& refusal : refusals)
    if (answer == refusal.word) return ScriptError{.text = refusal.error, .number = refusal.number};
  if (answer == "agree") return std::nullopt;
  return ScriptError{.text = "the setting administrator says \"" + answer + "\", which is no answer.",
                     .number = -60008};
}

/// By launchd and not by this process, because on a Mac too it is another process that has the rights. What the
/// command wrote comes back as one text, for launchd keeps both of its outputs in one file.
int asAdministrator(const StageRoot& root, const std::string& command) {
  const auto answer = askLaunchd(root, {"administrator", command});
  if (!answer) return failed({.text = "launchd does not answer.", .number = -60008});
  if (answer->status != 0) return failed({.text = answer->errors, .number = answer->status});
  std::cout << answer->errors;
  return 0;
}

int asUser(const std::string& command) {
  const int status = std::system(command.c_str());
  if (status == 0) return 0;
  return failed({.text = "The command exited with a non-zero status.",
                 .number = WIFEXITED(status) ? WEXITSTATUS(status) : kFailed});
}

/// A script that asks for no privileges shows no prompt, whatever text it has for one.
int carryOut(const StageRoot& root, const ShellRequest& request) {
  const auto command = commandOnStage(request.command, root.directory());
  if (!request.asAdministrator) return asUser(command);
  if (const auto refused = askedUser(root, request.prompt.value_or("osascript wants to make changes.")))
    return failed(*refused);
  return asAdministrator(root, command);
}

/// A zero byte ends each, because it is the one that no argument can hold.
void keep(const StageRoot& root, const std::vector<std::string>& arguments) {
  std::string bytes;
  for (const auto& argument : arguments)
    bytes += argument + '\0';
  // It is there to be looked at only.
  static_cast<void>(platform::posix::writeAtomically(root.control("osascript-arguments"), bytes));
}

}  // namespace

std::optional<OsascriptUse> osascriptUse(const std::vector<std::string>& arguments) {
  OsascriptUse use;
  std::size_t next = 0;
  for (; next + 1 < arguments.size() && arguments[next] == "-e"; next += 2)
    use.script += arguments[next + 1] + "\n";
  if (next == 0) return std::nullopt;
  use.arguments.assign(arguments.begin() + static_cast<std::ptrdiff_t>(next), arguments.end());
  return use;
}

int runOsascript(const StageRoot& root, const std::vector<std::string>& arguments) {
  // First of all, so that what an osascript with a fault was asked to do can be looked at, too.
  keep(root, arguments);
  if (const auto status = sufferFault(root, "osascript", actingUser())) return *status;
  const auto use = osascriptUse(arguments);
  if (!use) {
    std::cerr << "Usage: osascript -e <line>… [<argument>…]\n";
    return kUsage;
  }
  const auto request = shellRequest(use->script, use->arguments);
  return request ? carryOut(root, *request) : failed(request.error());
}

}  // namespace tamo::stage
