#include "soak/strangers.hpp"

namespace tamo::soak {

bool Strangers::add(const std::string& where, const Bystander::Wish& wish) {
  auto stranger = Bystander::start(wish);
  if (!stranger) return false;
  all_.emplace_back(where, *std::move(stranger));
  return true;
}

void Strangers::addNextTo(pid_t pid) {
  for (const pid_t step : {1, -1, 2, -2, 3, -3})
    if (add("in a neighbouring pid", {.pid = pid + step})) return;
}

void Strangers::judge(Tally& tally, const std::string& round) const {
  for (const auto& [where, stranger] : all_) {
    tally.count("strangers " + where);
    if (const auto harm = stranger.harm(); !harm.empty())
      tally.wrong(round + ": a stranger " + where + " " + harm);
  }
}

}  // namespace tamo::soak
