#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

#include "faults/outcomes.hpp"
#include "faults/sweep.hpp"
#include "faults/take_check.hpp"

namespace {

using namespace tamo::faults;
using Kind = void (Sweep::*)(const Scene&, By);

unsigned long long shown(std::uint64_t number) {
  return number;
}

int playOne(const char* words) {
  const auto take = takeNamed(words);
  if (!take) {
    std::fprintf(stderr, "no such take: %s\n", words);
    return 2;
  }
  Player player;
  if (const auto why = whyNotPlayed(player, *take); !why.empty()) {
    std::fprintf(stderr, "not played: %s\n", why.c_str());
    return 2;
  }
  const auto played = player.play(*take, {.traced = true});
  std::fputs(played.trace.c_str(), stdout);
  std::printf("told: %s\nleft: %s\n", played.told.c_str(), played.left.c_str());
  for (const auto& wrong : played.wrong)
    std::printf("WRONG %s\n", wrong.c_str());
  return played.wrong.empty() ? 0 : 1;
}

/// What came of one scene, asked for in both ways.
struct Row {
  Tally singles;
  Tally pairs;
  Tally deaths;
  Tally both;

  [[nodiscard]] std::array<const Tally*, 4> kinds() const { return {&singles, &pairs, &deaths, &both}; }
  [[nodiscard]] Tally whole() const {
    Tally sum;
    for (const auto* tally : kinds())
      sum.add(*tally);
    return sum;
  }
};

Tally swept(Kind kind, const Scene& scene) {
  Sweep sweep({});
  for (const auto by : {By::Switch, By::Url})
    (sweep.*kind)(scene, by);
  return sweep.tally();
}

void show(const char* name, const Row& row) {
  const auto whole = row.whole();
  std::printf("%-27s %6llu %6llu %6llu %8llu %8llu %8llu %8llu %7llu %7llu\n", name, shown(row.singles.calls),
              shown(row.singles.failing), shown(row.singles.ways), shown(row.singles.takes),
              shown(row.pairs.takes), shown(row.deaths.takes), shown(row.both.takes), shown(whole.missed),
              shown(whole.broken));
  for (const auto* tally : row.kinds()) {
    for (const auto& wrong : tally->wrong)
      std::printf("  %s\n", wrong.c_str());
  }
}

void show(const Row& sum, double seconds) {
  show("all", sum);
  std::printf(
      "a part of a copy stayed: %llu times after failures, %llu times after deaths, opened %llu times\n",
      shown(sum.singles.partsLeft + sum.pairs.partsLeft), shown(sum.deaths.partsLeft + sum.both.partsLeft),
      shown(sum.whole().partsOpened));
  std::printf("after %llu of the deaths the clean run was compared with one on a fresh Mac\n",
              shown(sum.whole().compared));
  std::printf("%.1f s\n", seconds);
}

int playAll() {
  const auto begun = std::chrono::steady_clock::now();
  std::printf("%-27s %6s %6s %6s %8s %8s %8s %8s %7s %7s\n", "", "calls", "fail", "ways", "singles", "pairs",
              "deaths", "both", "missed", "broken");
  Row sum;
  for (const auto& scene : scenes()) {
    const Row row{.singles = swept(&Sweep::singles, scene),
                  .pairs = swept(&Sweep::pairs, scene),
                  .deaths = swept(&Sweep::deaths, scene),
                  .both = swept(&Sweep::deathsAfterFaults, scene)};
    show(scene.name.c_str(), row);
    sum.singles.add(row.singles);
    sum.pairs.add(row.pairs);
    sum.deaths.add(row.deaths);
    sum.both.add(row.both);
  }
  show(sum, std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count());
  const bool sound = sum.whole().broken + sum.whole().missed == 0;
  std::puts(sound ? "nothing was broken" : "BROKEN; a take is shown by: prove/faults play 'TAKE'");
  return sound ? 0 : 1;
}

}  // namespace

/// every-fault [play TAKE | outcomes]
int main(int argc, char** argv) {
  if (argc == 1) return playAll();
  if (argc == 3 && std::strcmp(argv[1], "play") == 0) return playOne(argv[2]);
  if (argc == 2 && std::strcmp(argv[1], "outcomes") == 0) {
    std::fputs(outcomesOfSingles().c_str(), stdout);
    return 0;
  }
  std::fprintf(stderr, "use: every-fault [play TAKE | outcomes]\n");
  return 2;
}
