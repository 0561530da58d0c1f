#pragma once

#include <memory>
#include <optional>
#include <string>

#include "acceptance/player.hpp"
#include "platform/stage/stage_root.hpp"
#include "stage/control/app_copy.hpp"

/// The stage as a place for checks. Any number of them can be laid side by side.
namespace tamo::acceptance {

/// How a stage lies from the moment at which the check begins, for those who want to see the check fail.
struct Lie {
  /// What is done to the stage.
  void (*plant)(const stage::StageRoot&) = nullptr;
  /// How the Core behaves, whatever is ordered.
  std::optional<std::string> core{};
  /// The companion in copies that are placed from then on.
  stage::Companion companion = stage::Companion::Shipped;
  /// Whoever logs in as another user is in this user's own session.
  bool oneSession = false;

  bool operator==(const Lie&) const = default;
};

/// Lays a stage in a directory of its own, with nothing installed. `programs` is the folder of the stage's programs.
/// It is struck when it is destroyed.
[[nodiscard]] std::unique_ptr<LaidPlace> laidStage(const std::string& programs, const Lie& lie = {});

/// What the report says of stages.
[[nodiscard]] PlaceFacts stageFacts();

}  // namespace tamo::acceptance
