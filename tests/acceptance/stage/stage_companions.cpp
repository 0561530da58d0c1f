#include "acceptance/stage/stage_companions.hpp"

#include <algorithm>
#include <chrono>
#include <sys/socket.h>
#include <thread>

#include "acceptance/child.hpp"
#include "platform/stage/stream_sockets.hpp"
#include "stage/control/app_copy.hpp"

namespace tamo::acceptance {

int StageCompanions::start(const Start& start) {
  std::vector<std::string> words{root_.host(stage::companionProgram(copies_.path(start.copy)))};
  words.insert(words.end(), start.arguments.begin(), start.arguments.end());
  const auto pid = startProgram({.words = words,
                                 .environment = std::vector<std::string>{
                                     "TAMO_STAGE=" + root_.directory(),
                                     "TAMO_STAGE_OPEN=" + start.url.value_or(""), "PATH=/usr/bin:/bin"}});
  started_[pid] = false;
  return pid;
}

bool StageCompanions::ended(int started) {
  return hasEnded(started);
}

bool StageCompanions::hasEnded(pid_t pid) {
  auto& over = started_.at(pid);
  const auto end = over ? std::nullopt : endOf(pid);
  if (!end) return over;
  if (*end > 128)
    crashes_.push_back("companion " + std::to_string(pid) + ": signal " + std::to_string(*end - 128));
  return over = true;
}

bool StageCompanions::allEnded() const {
  return std::ranges::all_of(started_, [](const auto& one) { return one.second; });
}

bool StageCompanions::deliver(pid_t pid, const std::string& url) const {
  const auto socket = stage::connectedTo(root_.control("companions/" + std::to_string(pid) + ".sock"));
  const auto text = url + "\n";
  return socket &&
         ::send(socket.get(), text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
}

/// A companion that has only just been started takes no URL yet, as one of a Mac would.
std::string StageCompanions::open(const std::string& url) {
  for (int attempt = 0; attempt < 1000; ++attempt) {
    const auto runs = running();
    if (runs.empty()) {
      start({.url = url});
      return "";
    }
    if (deliver(runs.front(), url)) return "";
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return "the companion takes no URL";
}

std::vector<pid_t> StageCompanions::running() {
  std::vector<pid_t> pids;
  for (const auto& [pid, over] : started_)
    if (!over && !hasEnded(pid)) pids.push_back(pid);
  return pids;
}

}  // namespace tamo::acceptance
