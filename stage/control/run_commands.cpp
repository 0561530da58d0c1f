#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/posix/argument_vector.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "stage/common/stage_error.hpp"
#include "stage/control/app_copy.hpp"
#include "stage/control/stage_commands.hpp"
#include "stage/control/stage_layout.hpp"

namespace tamo::stage {
namespace {

/// This process becomes the program; returns only by StageError. Whoever runs it has the program's own pid, its
/// signals and its status, with nothing in between.
int become(const StageRoot& root, const std::string& program, std::vector<std::string> arguments) {
  ::setenv("TAMO_STAGE", root.directory().c_str(), 1);
  arguments.insert(arguments.begin(), program);
  // What the program does must not depend on where its caller happens to stand.
  if (::chdir("/") == 0) ::execv(program.c_str(), platform::vectorOf(arguments).data());
  throw StageError("cannot run " + program + ": " + std::strerror(errno));
}

/// One URL a line, so a URL with a line's end in it would be two.
std::string lines(const std::vector<std::string>& urls) {
  std::string text;
  for (const auto& url : urls) {
    if (url.empty() || url.contains('\n')) throw UsageError("\"" + url + "\" is no URL");
    text += url + "\n";
  }
  return text;
}

int run(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  std::string where = "installed";
  std::vector<std::string> urls;
  // Options stand in front alone: from the first other word on, all belong to the companion.
  for (bool more = true; more;) {
    const auto copy = arguments.takeNextOption("--copy");
    const auto url = arguments.takeNextOption("--open");
    if (copy) where = *copy;
    if (url) urls.push_back(*url);
    more = copy || url;
  }
  auto words = arguments.takeRest();
  if (!words.empty() && words.front() == "--") words.erase(words.begin());
  const auto path = companionProgram(copyPath(root, where));
  const auto opened = lines(urls);
  if (!root.existing(path)) throw StageError("there is no companion at " + path);
  // One that stands in the caller's environment was meant for another companion.
  ::unsetenv("TAMO_STAGE_OPEN");
  if (!opened.empty()) ::setenv("TAMO_STAGE_OPEN", opened.c_str(), 1);
  // By its path as text: the companion is to see the link that it was reached by.
  return become(root, root.host(path), words);
}

bool deliver(const std::string& socketPath, std::string_view text) {
  const auto socket = connectedTo(socketPath);
  if (!socket) return false;
  // A companion that ends meanwhile is one that was not reached, and must not end the sender by SIGPIPE.
  const auto sent = ::send(socket.get(), text.data(), text.size(), MSG_NOSIGNAL);
  return sent == static_cast<ssize_t>(text.size());
}

/// To all of them, as nobody but the system knows which one a Mac would choose.
int send(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  auto urls = arguments.takeRest();
  if (urls.empty()) throw UsageError("missing URL");
  const auto text = lines(urls);
  int reached = 0;
  for (const auto& item : std::filesystem::directory_iterator(root.control("companions")))
    // One that was killed leaves its socket behind; nobody answers there.
    if (item.path().extension() == ".sock" && deliver(item.path().string(), text)) ++reached;
  if (reached == 0) throw StageError("no companion runs on " + root.directory());
  return 0;
}

int launchctl(StageArguments& arguments) {
  const auto root = stageAt(arguments.take("stage"));
  return become(root, root.host("/bin/launchctl"), arguments.takeRest());
}

}  // namespace

std::vector<StageCommand> runCommands() {
  return {{"run", "R [--copy WHERE] [--open URL]… [--] ARGUMENT…",
           "become the companion of that copy; URLs arrive before launching ends", run},
          {"send", "R URL…", "open URLs in every running companion", send},
          {"launchctl", "R ARGUMENT…", "run the stage's launchctl", launchctl}};
}

}  // namespace tamo::stage
