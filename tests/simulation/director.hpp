#pragma once

#include <string_view>

#include "simulation/faults.hpp"

namespace tamo::simulation {

class Companion;

/// Says what becomes of each call of each companion, in a run in which that is not left to chance.
class Director {
 public:
  Director() = default;
  Director(const Director&) = delete;
  Director& operator=(const Director&) = delete;
  virtual ~Director() = default;

  /// At the entry of a call, in the order of the run. `subject` says what it is about: a path, a tool's work,
  /// a pid, or nothing. May end the process.
  [[nodiscard]] virtual Way called(Companion& companion, Call call, std::string_view subject) = 0;

  /// A companion was killed.
  virtual void died(Companion& /*companion*/) {}
};

}  // namespace tamo::simulation
