#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "scenario/stage.hpp"
#include "soak/chance.hpp"
#include "soak/tally.hpp"

namespace tamo::soak {

/// Many companions at the job lock at once. launchctl is replaced by a tool that notes who works on the job
/// when, so that two at once are seen from outside.
class CrowdRounds {
 public:
  CrowdRounds(Tally& tally, Chance& chance);

  /// 64 companions, about half of which are killed at random moments. Nobody may overlap or get stuck, and
  /// one that comes when all are gone goes through at once.
  void killedCrowd();
  /// What stands in the lock's way, in the way with this number, while a few companions wait and work. What
  /// the design allows to overlap is counted by itself.
  void disturbedCrowd(std::size_t way);
  /// A lock file that cannot be opened, so that nobody gets the lock: the overlaps have to be seen.
  void canary();

  static std::size_t ways();

 private:
  struct Crowd {
    std::vector<scenario::Started> companions;
    std::map<int, std::int64_t> killed;
    int stuck = 0;
    int crashed = 0;
  };

  [[nodiscard]] Crowd gather(int size) const;
  /// Waits for everyone, and kills so many in a hundred at random moments within `span`.
  void see(Crowd& crowd, int killedInHundred, int span);
  int take(const std::string& round, const Crowd& crowd);
  void runClean(const std::string& round);

  Tally& tally_;
  Chance& chance_;
  const scenario::Stage stage_{{.core = "term=obey"}};
};

}  // namespace tamo::soak
