#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "simulation/companion.hpp"
#include "simulation/world.hpp"

/// The settings in which calls are made to fail: an action, and how the played Mac is before it.
namespace tamo::faults {

using simulation::Companion;
using simulation::CompanionPlan;
using simulation::Time;
using simulation::World;

struct Scene {
  std::string name;
  /// Empty when nothing is asked for.
  std::string_view action;
  /// The copy of the application that is asked. It is of build 42.
  std::string_view copy = simulation::Places::installed;
  /// What is installed when that is another copy; empty: nothing.
  std::string_view installed = {};
  std::int64_t status = 1;
  bool loaded = true;
  /// The definition that launchd has; the bundled one is 0.
  std::size_t definition = 0;
  bool coreRuns = true;
  bool coreIgnoresStops = false;
  bool approvalWithheld = false;
  /// The home in whose data a marker tells that a revert is going on; empty: there is none.
  std::string_view markerIn = {};
  /// Whether the companion is of the build that has another home.
  bool proofHome = false;
  bool applicationsWritable = true;
  /// How the administrator's prompt is answered: 0 closed, 1 refused, 2 allowed.
  std::uint64_t administrator = 2;
  /// Whether the system tells where a translocated copy comes from.
  bool originalKnown = true;
};

/// A request by URL goes to a build without receipts, whose terminate request returns; one by the switch to a
/// build with them, in which it does not.
enum class By { Switch, Url };

[[nodiscard]] const std::vector<Scene>& scenes();
/// Null when there is none of that name.
[[nodiscard]] const Scene* sceneNamed(std::string_view name);

/// Puts a scene into an empty world.
void furnish(World& world, const Scene& scene);
/// A companion of the scene that is asked for `action`; empty: for nothing.
[[nodiscard]] CompanionPlan planOf(const Scene& scene, By by, std::string_view action, std::string name);

}  // namespace tamo::faults
