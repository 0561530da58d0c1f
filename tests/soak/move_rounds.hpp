#pragma once

#include <optional>
#include <string>

#include "scenario/move_stage.hpp"
#include "soak/chance.hpp"
#include "soak/destination.hpp"
#include "soak/tally.hpp"

namespace tamo::soak {

/// Moves to /Applications that are cut off: the companion, its tool or both are killed at a random moment. The
/// last whole copy may never be lost, and a second move, undisturbed, must find the destination whole or
/// absent and leave it whole.
class MoveRounds {
 public:
  MoveRounds(Tally& tally, Chance& chance) : tally_(tally), chance_(chance) {}

  void round();
  /// Somebody takes away both copies behind the companion's back; the loss has to be counted.
  void canary();

 private:
  enum class Victim { Nobody, Companion, Tool, Both };

  void reset(bool replaces);
  void endTamos() const;
  void disturb(const scenario::Started& companion, Victim victim);
  void waitForQuiet() const;
  void finish(const scenario::Started& companion, const std::string& round);
  [[nodiscard]] bool keptSomewhere(const scenario::Tree& tree) const;
  void judgeLoss(const std::string& round);
  [[nodiscard]] Destination destination() const;
  void moveAgain(const std::string& round, Victim victim);

  Tally& tally_;
  Chance& chance_;
  const scenario::MoveStage stage_;
  scenario::Tree downloaded_;
  /// What was to be replaced; absent when nothing was.
  std::optional<scenario::Tree> older_;
};

}  // namespace tamo::soak
