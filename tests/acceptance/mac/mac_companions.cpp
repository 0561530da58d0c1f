#include "acceptance/mac/mac_companions.hpp"

#include "acceptance/child.hpp"
#include "acceptance/mac/mac_settings.hpp"
#include "acceptance/mac/mac_tools.hpp"

namespace tamo::acceptance {

int MacCompanions::start(const Start& start) {
  const auto bundle = copies_.path(start.copy) + companionInCopy;
  std::vector<std::string> words{"/usr/bin/open"};
  if (start.url) {
    words.insert(words.end(), {"-a", bundle, *start.url});
  } else {
    words.insert(words.end(), {"-n", "-W", bundle});
    if (!start.arguments.empty()) words.emplace_back("--args");
    words.insert(words.end(), start.arguments.begin(), start.arguments.end());
  }
  started_.push_back({startProgram({.words = words}), false, !start.url});
  return static_cast<int>(started_.size()) - 1;
}

bool MacCompanions::ended(int started) {
  auto& opening = started_.at(static_cast<std::size_t>(started));
  if (!opening.toolEnded) opening.toolEnded = endOf(opening.tool).has_value();
  return opening.toolEnded && (opening.waits || running().empty());
}

std::string MacCompanions::open(const std::string& url) {
  const auto run = runProgram({.words = {"/usr/bin/open", url}}, std::chrono::seconds(120));
  return run.status == 0 ? "" : run.text + "(status " + std::to_string(run.status) + ")";
}

std::vector<pid_t> MacCompanions::running() {
  std::vector<pid_t> pids;
  for (const auto& one : processesEndingWith(companionProgram, Whose::Ours))
    pids.push_back(one.pid);
  return pids;
}

}  // namespace tamo::acceptance
