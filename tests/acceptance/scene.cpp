#include "acceptance/scene.hpp"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <thread>

#include "acceptance/line_text.hpp"

namespace tamo::acceptance {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

std::string sinceStart(steady_clock::time_point began) {
  const auto time = std::chrono::duration_cast<milliseconds>(steady_clock::now() - began);
  return std::to_string(time.count()) + " ms";
}

void readable(const Acted& acted) {
  if (!acted.unread.empty()) throw CannotArrange(acted.unread);
}

}  // namespace

std::string Acted::outcome() const {
  const auto ending = std::ranges::find_if(lines, endsAction);
  return ending == lines.end() ? "" : comparable(*ending);
}

bool Scene::eventually(const std::function<bool()>& isTrue, milliseconds within) {
  const auto end = steady_clock::now() + within;
  while (!isTrue()) {
    if (steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(milliseconds(20));
  }
  return true;
}

void Scene::pause(milliseconds time) {
  std::this_thread::sleep_for(time);
}

Going Scene::begin(const Start& start) {
  const auto since = place.evidence.now();
  const auto began = steady_clock::now();
  return {place.companions.start(start), since, began};
}

Acted Scene::finish(const Going& going) {
  const bool over =
      eventually([&] { return place.companions.ended(going.number); }, std::chrono::seconds(120));
  if (!over) see.that(false, "the companion ends by itself", "it still ran after " + sinceStart(going.began));
  const auto after = std::chrono::duration_cast<milliseconds>(steady_clock::now() - going.began);
  if (auto unread = place.evidence.unreadable(); !unread.empty())
    return {.lines = {}, .after = after, .unread = std::move(unread)};
  Acted acted{place.evidence.lines(going.since, 1), after};
  see.keep("lines.txt", lineText(acted.lines) + "(ended after " + std::to_string(after.count()) + " ms)\n");
  return acted;
}

Acted Scene::act(const std::string& action, Copy copy) {
  return finish(begin({.copy = copy, .arguments = {"--core-action", action}}));
}

pid_t Scene::coreNow() {
  // By the line alone, so that no check sees the Core with the eyes of what it checks.
  constexpr std::string_view line = "\n\tpid = ";
  const auto print = place.job.print();
  const auto found = print.status == 0 ? print.text.find(line) : std::string::npos;
  return found == std::string::npos ? 0 : std::atoi(print.text.c_str() + found + line.size());
}

pid_t Scene::core() {
  pid_t pid = 0;
  static_cast<void>(eventually([&] { return (pid = coreNow()) != 0; }));
  return pid;
}

bool Scene::alive(pid_t pid) const {
  const auto info = pid > 0 ? place.kernel.info(pid) : std::nullopt;
  return info && !info->zombie;
}

std::vector<pid_t> Scene::helpers() {
  constexpr std::string_view told = ": has the helper ";
  std::vector<pid_t> pids;
  for (const auto& event : place.core.events()) {
    if (event.contains(": started in group ")) pids.clear();
    const auto found = event.find(told);
    if (found != std::string::npos) pids.push_back(std::atoi(event.c_str() + found + told.size()));
  }
  return pids;
}

pid_t Scene::freshCore(const std::string& behaviour) {
  const auto before = coreNow();
  place.core.behave(behaviour);
  place.job.restart();
  pid_t pid = 0;
  const bool anew = eventually([&] {
    pid = coreNow();
    const auto mark = "core " + std::to_string(pid) + ": is up";
    const auto events = place.core.events();
    return pid != 0 && pid != before &&
           std::ranges::any_of(events, [&](const auto& event) { return event.contains(mark); });
  });
  see.that(anew, "a Core that behaves as ordered is up before the companion is started");
  return pid;
}

void Scene::signal(pid_t pid, int number) {
  // Zero would be this process's own group.
  if (pid > 0) ::kill(pid, number);
}

bool Scene::left(const Acted& acted, const std::vector<std::string>& patterns) {
  readable(acted);
  std::string expected;
  std::string seen;
  bool all = patterns.size() == acted.lines.size();
  for (const auto& pattern : patterns)
    expected += pattern + "\n";
  for (std::size_t index = 0; index < acted.lines.size(); ++index) {
    const auto text = comparable(acted.lines.at(index));
    all = all && matches(patterns.at(index), text);
    seen += text + "\n";
  }
  if (all) return see.that(true, "the companion leaves exactly these lines", seen);
  return see.equal("the companion leaves exactly these lines", expected, seen);
}

bool Scene::ended(const Acted& acted, const std::string& pattern) {
  readable(acted);
  const auto outcome = acted.outcome();
  if (matches(pattern, outcome)) return see.that(true, "the action ends with this line", outcome);
  return see.equal("the action ends with this line", pattern, outcome);
}

bool Scene::replaced(pid_t before) {
  const bool gone = see.that(!alive(before), "the Core from before is gone");
  pid_t now = 0;
  const bool anew = eventually([&] {
    now = coreNow();
    return now != 0 && now != before && alive(now);
  });
  return see.that(anew, "another Core runs", "pid " + std::to_string(now)) && gone;
}

bool Scene::untouched(pid_t before) {
  const auto now = coreNow();
  return see.that(now == before && alive(now), "the same Core runs",
                  "pid " + std::to_string(before) + ", then " + std::to_string(now));
}

std::string hardStop(pid_t pid, const std::string& outcome) {
  return "hardstop pid " + std::to_string(pid) + ": " + outcome;
}

std::string enabled(const std::string& action, const std::string& more) {
  return action + " -> status 1 ok Optional(true)" + more;
}

std::string definition(const std::string& changed) {
  return "definition: loaded * exit * · bundled * exit * · changed " + changed;
}

}  // namespace tamo::acceptance
