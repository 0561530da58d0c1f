#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulation/companion.hpp"
#include "simulation/director.hpp"

/// What goes wrong in a run, said beforehand: which call fails and how, or where the companion is killed.
namespace tamo::faults {

using simulation::Call;
using simulation::Companion;
using simulation::Time;
using simulation::Way;

/// A call of a run, by its number from 1 on, that fails; `forGood`: and all later ones of its kind.
struct Fault {
  std::size_t call = 0;
  Way way = Way::None;
  bool forGood = false;
};

/// SIGKILL of the companion.
struct Death {
  enum class When {
    /// Before the call.
    Before,
    /// After it, or while it lasts; at the latest before the next.
    After,
    /// So long after the launch.
    At
  };
  When when = When::Before;
  std::size_t call = 0;
  Time at{0};
};

/// A call as it was met.
struct Met {
  Call call;
  std::string subject;
};

/// In which ways a call may fail in a run of `companion`, as its interface has it. Empty for one that has no
/// way to fail. What has no bound may not hang, and what stops the process by intent is not made to fail.
[[nodiscard]] std::vector<Way> waysOf(const Companion& companion, Call call, std::string_view subject);

/// Follows a script for one companion and leaves all others alone.
class ScriptedDirector final : public simulation::Director {
 public:
  struct Script {
    std::vector<Fault> faults;
    std::optional<Death> death;
    /// Whether the calls are kept for reading.
    bool keepsCalls = true;
  };

  explicit ScriptedDirector(Script script) : script_(std::move(script)) {}

  /// The companion that the script is about.
  void direct(const Companion& companion) { companion_ = &companion; }
  [[nodiscard]] Way called(Companion& companion, Call call, std::string_view subject) override;

  /// Called when the companion that the script is about was killed.
  void whenDead(std::function<void()> work) { whenDead_ = std::move(work); }
  void died(Companion& companion) override;

  /// The calls so far; the first is number 1.
  [[nodiscard]] const std::vector<Met>& calls() const { return calls_; }
  /// The ways in which each of them could have failed.
  [[nodiscard]] const std::vector<std::vector<Way>>& ways() const { return ways_; }
  [[nodiscard]] std::size_t count() const { return count_; }
  /// Whether any companion opened an installed copy that was not whole.
  [[nodiscard]] bool openedPart() const { return openedPart_; }
  /// How many of the faults were reached.
  [[nodiscard]] std::size_t struck() const { return kinds_.size(); }

 private:
  struct Kind {
    Fault fault;
    Call call;
    std::string subject;
  };
  [[nodiscard]] bool goesOn(const Kind& kind, Call call, std::string_view subject) const;
  [[nodiscard]] Way wayOf(Call call, std::string_view subject);
  void maybeKill(Companion& companion);

  Script script_;
  const Companion* companion_ = nullptr;
  std::function<void()> whenDead_;
  std::size_t count_ = 0;
  std::vector<Met> calls_;
  std::vector<std::vector<Way>> ways_;
  std::vector<Kind> kinds_;
  bool openedPart_ = false;
};

}  // namespace tamo::faults
