#include "stage/picture/scene.hpp"

#include <algorithm>

namespace tamo::stage {
namespace {

/// A picture of no time at all could not be drawn.
constexpr std::int64_t shortest = 1000;

Life since(std::int64_t begin, Life life) {
  life.from -= begin;
  life.seen -= begin;
  if (life.until) *life.until -= begin;
  return life;
}

/// One that is not there any longer though nobody noted its end has ended some time after it was heard of.
Life settled(Life life, const Present& present) {
  if (life.until || present.living.contains(life.pid)) return life;
  life.until = life.seen;
  life.lost = true;
  return life;
}

std::int64_t endOf(const Scene& scene, std::int64_t begin, const Present& present) {
  auto until = std::max(shortest, scene.moments.back().at);
  // While the companion runs, what it waits for goes on until now.
  if (!scene.self().until && present.now) until = std::max(until, *present.now - begin);
  return until;
}

/// Of what came before, only who has the lock matters still.
std::vector<Moment> momentsSince(std::vector<Moment>::const_iterator begin, const std::vector<Moment>& all) {
  std::vector<Moment> kept;
  for (auto moment = all.begin(); moment != all.end(); ++moment) {
    const bool isLock = moment->word == "lock" || moment->word == "unlocks";
    if (moment < begin && !isLock) continue;
    kept.push_back(*moment);
    kept.back().at -= begin->at;
  }
  return kept;
}

}  // namespace

/// An action begins with its companion. Where several run at once, the one that began last is drawn, and the others are
/// rows beside it.
std::optional<Scene> lastScene(const JournalReading& reading, const Present& present) {
  const auto& all = reading.moments;
  const auto last =
      std::find_if(all.rbegin(), all.rend(), [](const Moment& one) { return one.word == "companion"; });
  if (last == all.rend()) return std::nullopt;
  const auto begin = last->at;
  Scene scene;
  scene.moments = momentsSince(last.base() - 1, all);
  // From the whole journal: the Core that is stopped began long before the action.
  for (const auto& life : livesIn(all)) {
    auto known = since(begin, settled(life, present));
    if (!known.until || *known.until >= 0) scene.lives.push_back(std::move(known));
  }
  if (const auto companion = lifeOf(last->pid, 0, scene.lives)) scene.companion = *companion;
  scene.until = endOf(scene, begin, present);
  return scene;
}

}  // namespace tamo::stage
