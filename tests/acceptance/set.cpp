#include "acceptance/set.hpp"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>

namespace tamo::acceptance {
namespace {

/// What the workers of a set share: the next check, and the results.
struct Work {
  const std::vector<Chosen>& set;
  const std::function<Lay(const Chosen&)>& lay;
  const Offer& offer;
  const Watching& watching;
  std::vector<Played> results;
  std::atomic<std::size_t> next{0};
  std::mutex telling{};

  void run() {
    for (auto index = next++; index < set.size(); index = next++) {
      const auto& one = set.at(index);
      tell([&] { watching.begins(*one.check); });
      auto played = play(*one.check, lay(one), offer);
      played.theme = one.theme;
      tell([&] { watching.ends(played); });
      results.at(index) = std::move(played);
    }
  }
  template <class What>
  void tell(What what) {
    const std::lock_guard lock(telling);
    what();
  }
};

}  // namespace

Choice chosen(const std::vector<std::string>& names) {
  Choice choice;
  std::vector<std::string> known;
  for (const auto& theme : allThemes()) {
    for (const auto& check : theme.checks) {
      const auto named = [&](const std::string& name) { return name == check.name || name == theme.name; };
      if (names.empty() || std::ranges::any_of(names, named))
        choice.checks.push_back({&check, std::string(theme.name)});
      known.emplace_back(check.name);
    }
    known.emplace_back(theme.name);
  }
  for (const auto& name : names)
    if (std::ranges::count(known, name) == 0) choice.unknown = name;
  return choice;
}

std::vector<Played> playSet(const std::vector<Chosen>& set, const std::function<Lay(const Chosen&)>& lay,
                            const Offer& offer, std::size_t atOnce, const Watching& watching) {
  Work work{.set = set,
            .lay = lay,
            .offer = offer,
            .watching = watching,
            .results = std::vector<Played>(set.size())};
  std::vector<std::thread> others;
  for (std::size_t worker = 1; worker < std::min(atOnce, set.size()); ++worker)
    others.emplace_back([&] { work.run(); });
  work.run();
  for (auto& other : others)
    other.join();
  return std::move(work.results);
}

}  // namespace tamo::acceptance
