#pragma once

#include <optional>

#include "faults/player.hpp"

/// The course of one take in a world that was furnished for it: the companion that the script is about, what
/// follows its death, and the judgement of what is there in the end.
namespace tamo::faults {

class Course {
 public:
  /// All three outlive this.
  Course(World& world, const Take& take, ScriptedDirector& director)
      : world_(world), take_(take), director_(director) {}

  void play(Played& played);
  /// After a death: the scene as the last companion found it. Absent when that cannot be said by a scene.
  [[nodiscard]] const std::optional<Scene>& fresh() const { return fresh_; }

 private:
  bool untilQuiet();
  void followDeath();
  void playLast(Played& played);
  void judgeUnkilled(const Companion& first, Played& played) const;
  void judgeLeft(Played& played) const;

  World& world_;
  const Take& take_;
  ScriptedDirector& director_;
  std::optional<Scene> fresh_;
};

}  // namespace tamo::faults
