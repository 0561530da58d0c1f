#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simulation/companion.hpp"
#include "simulation/verdict.hpp"

/// What somebody else on the simulated Mac does while a companion acts, and what that may bring about.
namespace tamo::attacks {

using simulation::Companion;
using simulation::Invariant;
using simulation::World;

/// What must not come to harm: files of the user and of the Core, and processes that are none of the companion's business.
class Canaries {
 public:
  /// Lays them into a furnished world.
  explicit Canaries(World& world);

  /// The pid of a process of somebody's that leads a group of its own.
  [[nodiscard]] std::int32_t stranger() const { return stranger_; }
  /// What came to harm, a sentence each.
  [[nodiscard]] std::vector<std::string> harmed() const;
  /// Takes the files away again, so that what is left can be judged as if they had never been there.
  void removeFiles();

  static constexpr std::string_view folder = "/Users/u/Documents";
  static constexpr std::string_view letter = "/Users/u/Documents/letter";

 private:
  World& world_;
  std::int32_t stranger_ = 0;
  std::uint64_t strangerStart_ = 0;
};

struct Attack {
  std::string_view name;
  void (*strike)(World& world, Companion& companion, const Canaries& canaries);
  /// Which invariants somebody who does this breaks himself, or makes the companion break by what it is told.
  std::vector<Invariant> excused = {};
  /// A folder in which the companion may leave a file that it would else not have made; empty: there is none.
  std::string_view mayLeave = {};
};

[[nodiscard]] const std::vector<Attack>& attacks();
/// Null when there is none of that name.
[[nodiscard]] const Attack* attackNamed(std::string_view name);

}  // namespace tamo::attacks
