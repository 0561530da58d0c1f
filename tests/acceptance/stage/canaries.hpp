#pragma once

#include <string_view>
#include <vector>

#include "acceptance/stage/stage_place.hpp"

/// For each check a stage that lies, so that the check is seen to fail: a check that holds on a lying stage sees nothing.
namespace tamo::acceptance {

struct Canary {
  /// The check that must fail.
  std::string_view check;
  /// What the stage does instead.
  std::string_view lie;
  Lie plant;
  /// The judgement that must not hold; empty where any will do.
  std::string_view finds{};
};

[[nodiscard]] const std::vector<Canary>& allCanaries();
/// Null when the check has none.
[[nodiscard]] const Canary* canaryOf(std::string_view check);

/// The checks that no stage can play.
[[nodiscard]] const std::vector<std::string_view>& notForStages();

}  // namespace tamo::acceptance
