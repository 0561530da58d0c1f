#pragma once

#include <string_view>
#include <vector>

#include "acceptance/stage/stage_place.hpp"

/// For each check a stage that lies, so that the check is seen to fail: a check that holds on a lying stage sees nothing.
/// And for each kind of lie a check that it is nothing to, which is seen to hold: a stage on which nothing works would
/// make any check fail.
namespace tamo::acceptance {

struct Canary {
  /// The check that must fail.
  std::string_view check;
  /// What the stage does instead.
  std::string_view lie;
  Lie plant;
  /// The judgement that must not hold.
  std::string_view finds{};
};

/// A check that the lie is nothing to: it has to hold on the same lying stage.
[[nodiscard]] std::string_view sparedBy(const Lie& lie);

/// One canary of each kind of lie: many checks are lied to alike.
[[nodiscard]] std::vector<const Canary*> oneOfEachLie();

[[nodiscard]] const std::vector<Canary>& allCanaries();
/// Null when the check has none.
[[nodiscard]] const Canary* canaryOf(std::string_view check);

/// The checks that no stage can play.
[[nodiscard]] const std::vector<std::string_view>& notForStages();

}  // namespace tamo::acceptance
