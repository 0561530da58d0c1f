#include <algorithm>
#include <chrono>
#include <thread>

#include "acceptance/check.hpp"
#include "acceptance/line_text.hpp"
#include "acceptance/lock_holder.hpp"
#include "acceptance/scene.hpp"

namespace tamo::acceptance {
namespace {

using namespace std::chrono_literals;

/// Waits for the lines of whatever a URL has started, and for its end.
std::vector<Line> afterAll(Scene& scene, std::int64_t since, std::size_t endings) {
  auto lines = scene.place.evidence.lines(since, endings);
  const bool over = Scene::eventually([&] { return scene.place.companions.running().empty(); }, 90s);
  scene.see.that(over, "no companion is left running");
  return scene.place.evidence.lines(since, std::max<std::size_t>(endings, std::size_t{1}));
}

std::vector<std::string> endings(const std::vector<Line>& lines) {
  std::vector<std::string> found;
  for (const auto& line : lines)
    if (endsAction(line)) found.push_back(comparable(line));
  return found;
}

void aUrlThatStartsIt(Scene& scene) {
  const auto since = scene.place.evidence.now();
  scene.see.equal("the system takes the URL", "", scene.place.companions.open("tamo-core://status"));
  const auto seen = endings(afterAll(scene, since, 1));
  scene.see.equal("the URL is the action of the process that it starts", enabled("status") + "\n",
                  joined(seen));
}

/// Two URLs, one right after the other; the second counts when it came within 0.4 s, which a slow system may not
/// manage at the first try.
void theLastUrl(Scene& scene) {
  for (int attempt = 1; attempt <= 5; ++attempt) {
    // A try that took too long has ended the Core of the one before.
    const auto before = scene.core();
    const auto since = scene.place.evidence.now();
    scene.place.companions.open("tamo-core://unregister");
    scene.place.companions.open("tamo-core://status");
    const auto took = scene.place.evidence.now() - since;
    const auto seen = endings(afterAll(scene, since, 1));
    scene.see.fact("two URLs, try " + std::to_string(attempt),
                   std::to_string(took / 1000) + " ms, " + (seen.empty() ? "no line" : seen.front()));
    if (took > 350'000) {
      scene.act("register");
      continue;
    }
    scene.see.equal("one process, and the last URL wins", enabled("status") + "\n", joined(seen));
    scene.untouched(before);
    return;
  }
  throw CannotArrange("the system took longer than 0.35 s over two URLs, five times");
}

/// The companion is there before the URL is handed over; otherwise the system may start another one for it.
void aUrlWithinTheIntake(Scene& scene) {
  for (int attempt = 1; attempt <= 5; ++attempt) {
    const auto going = scene.begin("audit-install");
    static_cast<void>(Scene::eventually([&] { return !scene.place.companions.running().empty(); }));
    const auto since = scene.place.evidence.now();
    scene.place.companions.open("tamo-core://status");
    const auto took = scene.place.evidence.now() - since;
    const auto acted = scene.finish(going);
    scene.see.fact("a URL right after a switch, try " + std::to_string(attempt),
                   std::to_string(took / 1000) + " ms, " + acted.outcome());
    if (took > 350'000) continue;
    scene.ended(acted, enabled("status"));
    return;
  }
  throw CannotArrange(
      "the system took longer than 0.35 s to start a companion and hand it a URL, five times");
}

/// The tool may wait for the companion's answer, so the lock is let go beside it.
void aUrlAfterTheIntake(Scene& scene) {
  LockHolder holder(scene.place.paths.lockFile);
  const auto before = scene.core();
  const auto going = scene.begin("register");
  static_cast<void>(Scene::eventually([&] { return !scene.place.companions.running().empty(); }));
  Scene::pause(1500ms);
  const auto sent = std::chrono::steady_clock::now();
  std::thread releasing([&holder] {
    Scene::pause(500ms);
    holder.release();
  });
  const auto said = scene.place.companions.open("tamo-core://unregister");
  const auto took =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - sent);
  releasing.join();
  const auto acted = scene.finish(going);
  scene.see.fact(
      "what became of a URL while the companion waited for the lock",
      (said.empty() ? "nothing was said" : said) + ", after " + std::to_string(took.count()) + " ms");
  scene.left(acted, {enabled("register", " kickstart 0")});
  scene.untouched(before);
}

void aBurst(Scene& scene) {
  const auto before = scene.core();
  const auto since = scene.place.evidence.now();
  for (int count = 0; count < 10; ++count)
    scene.place.companions.open("tamo-core://status");
  const auto took = scene.place.evidence.now() - since;
  const auto seen = endings(afterAll(scene, since, 1));
  const bool all = std::ranges::all_of(seen, [](const auto& line) { return line == enabled("status"); });
  scene.see.that(all && !seen.empty(), "every line is one of the status that was asked for", joined(seen));
  scene.see.fact("ten URLs in a row",
                 std::to_string(took / 1000) + " ms, " + std::to_string(seen.size()) + " processes answered");
  scene.untouched(before);
}

void anUnknownUrl(Scene& scene) {
  const auto since = scene.place.evidence.now();
  scene.place.companions.open("tamo-core://bogus");
  const auto seen = endings(afterAll(scene, since, 1));
  scene.see.equal("the default action is carried out", enabled("register", " kickstart 0") + "\n",
                  joined(seen));
}

void aUrlToACopyThatMayNotAct(Scene& scene) {
  scene.place.copies.place({.copy = Copy::Downloaded, .build = "5000"});
  const auto before = scene.core();
  const auto since = scene.place.evidence.now();
  const auto going = scene.begin({.copy = Copy::Downloaded, .url = "tamo-core://restart"});
  const auto acted = scene.finish(going);
  scene.see.fact("lines after a URL to a copy elsewhere",
                 joined(endings(scene.place.evidence.lines(since, 1))));
  scene.left(acted, {"error restart refused: tamo.test_copy_refused_live_data app=" +
                     scene.place.copies.path(Copy::Downloaded) + " (*"});
  scene.untouched(before);
}

/// How many of the URLs come so late that the default action is carried out instead.
void underLoad(Scene& scene) {
  int late = 0;
  for (int count = 0; count < scene.terms.underLoad; ++count) {
    const auto since = scene.place.evidence.now();
    scene.place.companions.open("tamo-core://status");
    const auto seen = endings(afterAll(scene, since, 1));
    const bool status = seen.size() == 1 && seen.front() == enabled("status");
    const bool fallback = seen.size() == 1 && seen.front() == enabled("register", " kickstart 0");
    if (!status) scene.see.that(fallback, "a late URL leads to the default action", joined(seen));
    if (fallback) ++late;
  }
  scene.see.that(late < scene.terms.underLoad, "not every URL comes late");
  scene.see.fact("URLs that came later than 0.4 s",
                 std::to_string(late) + " of " + std::to_string(scene.terms.underLoad));
}

}  // namespace

Theme urlChecks() {
  using enum Setting;
  return {
      "urls",
      {{"url-starts", "A URL is the action of the process that it starts.", Registered, aUrlThatStartsIt},
       {"url-last-wins", "Of two URLs within 0.4 seconds the last one counts, in one process.", Registered,
        theLastUrl},
       {"url-within", "A URL within 0.4 seconds replaces the switch.", Registered, aUrlWithinTheIntake},
       {"url-late", "A URL after 0.4 seconds changes nothing.", Registered, aUrlAfterTheIntake},
       {"url-burst", "A burst of URLs leads to that action and to no other.", Registered, aBurst},
       {"url-unknown", "A URL with an unknown name leads to the default action.", Registered, anUnknownUrl},
       {"url-refused-copy", "A URL to a copy that may not act is refused, at error level.", Registered,
        aUrlToACopyThatMayNotAct},
       {"url-again-and-again", "A URL leads to its action or, where it comes late, to the default one.",
        Registered, underLoad}}};
}

}  // namespace tamo::acceptance
