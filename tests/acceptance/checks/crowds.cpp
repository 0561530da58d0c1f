#include <map>
#include <set>

#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

/// Whether the lines of each process stand together: then no two acted at once.
bool oneAfterTheOther(const std::vector<Line>& lines) {
  std::set<pid_t> over;
  pid_t current = 0;
  for (const auto& line : lines) {
    if (line.pid == current) continue;
    if (over.contains(line.pid)) return false;
    over.insert(current);
    current = line.pid;
  }
  return true;
}

void severalAtOnce(Scene& scene, int count) {
  const auto before = scene.core();
  const auto since = scene.place.evidence.now();
  std::vector<Going> going;
  for (int number = 0; number < count; ++number)
    going.push_back(scene.begin("restart"));
  std::string outcomes;
  for (const auto& one : going)
    scene.finish(one);
  const auto lines = scene.place.evidence.lines(since, static_cast<std::size_t>(count));
  std::map<std::string, int> counted;
  for (const auto& line : lines)
    if (endsAction(line)) ++counted[comparable(line)];
  for (const auto& [text, times] : counted)
    outcomes += std::to_string(times) + " times " + text + "\n";
  scene.see.equal("each leaves its outcome line",
                  std::to_string(count) + " times " + enabled("restart", " kickstart 0") + "\n", outcomes);
  scene.see.that(oneAfterTheOther(lines), "each begins only after the one before it has ended");
  scene.replaced(before);
}

void two(Scene& scene) {
  severalAtOnce(scene, 2);
}

void eight(Scene& scene) {
  severalAtOnce(scene, 8);
}

}  // namespace

Theme crowdChecks() {
  return {
      "crowds",
      {{"two-at-once", "Two restarts at once are carried out one after the other.", Setting::Registered, two},
       {"eight-at-once", "Eight restarts at once are carried out one after the other.", Setting::Registered,
        eight}}};
}

}  // namespace tamo::acceptance
