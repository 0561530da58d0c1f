#pragma once

#include <memory>

#include "platform/platform.hpp"

namespace tamo::simulation {

class Companion;

/// The platform of one companion: each call is noted, may fail, may take its time, and is judged.
class SimulatedPlatform {
 public:
  /// `companion` outlives this.
  explicit SimulatedPlatform(Companion& companion);
  SimulatedPlatform(const SimulatedPlatform&) = delete;
  SimulatedPlatform& operator=(const SimulatedPlatform&) = delete;
  ~SimulatedPlatform();

  [[nodiscard]] const platform::Platform& platform() const;
  /// The main loop turns: the list of running applications is brought up to date.
  void turn();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace tamo::simulation
