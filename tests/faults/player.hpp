#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "faults/scene.hpp"
#include "faults/script.hpp"
#include "simulation/plants.hpp"
#include "simulation/timeline.hpp"
#include "simulation/verdict.hpp"

namespace tamo::faults {

/// What follows a death.
struct Sequel {
  /// What the tools do that the dead companion had started.
  bool toolsDieToo = false;
  /// Whether the same is asked again a millisecond later, while they run.
  bool again = false;
  /// What is asked when all is quiet; empty: the same.
  std::string_view last = {};
};

/// One run, said in full.
struct Take {
  const Scene* scene = nullptr;
  By by = By::Switch;
  std::vector<Fault> faults = {};
  std::optional<Death> death = std::nullopt;
  Sequel sequel = {};
};

/// The take in words: what `prove/faults play` takes.
[[nodiscard]] std::string nameOf(const Take& take);
/// Absent when the words are no take's.
[[nodiscard]] std::optional<Take> takeNamed(std::string_view words);

struct Played {
  std::vector<Met> calls;
  std::vector<std::vector<Way>> ways;
  /// How many of the faults were reached.
  std::size_t struck = 0;
  bool killed = false;
  /// What is wrong, a sentence each: broken invariants, and what a death must not lead to.
  std::vector<std::string> wrong;
  /// The first companion's lines and what it wrote.
  std::string told;
  /// What is there in the end: the agent, the copies.
  std::string left;
  /// After a death: what the last companion told; empty when there was none.
  std::string lastTold;
  /// The installed copy was opened when it was not whole.
  bool openedPart = false;
  /// It was compared with what is told on a Mac that never saw the death.
  bool compared = false;
  /// A part of a copy is left, as it may be when the tool that copied was killed.
  bool partLeft = false;
  /// From the launch to the end of the first companion.
  Time lasted{0};
  std::string trace;
};

/// Plays takes on the simulated Mac. One thread; one take gives one course, with every compiler.
class Player {
 public:
  struct How {
    simulation::Plant plant = simulation::Plant::None;
    bool keepsCalls = true;
    bool traced = false;
  };

  [[nodiscard]] Played play(const Take& take, const How& how);

 private:
  /// A scene in which everything is as the last companion of a take found it.
  struct Fresh {
    Scene scene;
    By by;
  };
  Played playOnce(const Take& take, const How& how, std::optional<Fresh>& fresh);
  const std::string& toldInFresh(const Fresh& fresh);

  simulation::Timeline timeline_;
  std::map<std::string, std::string> told_;
};

}  // namespace tamo::faults
