#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "acceptance/check.hpp"
#include "acceptance/scene.hpp"

/// Plays one check: lays the place, arranges what lies there at the beginning, plays, and says what came of it.
namespace tamo::acceptance {

/// A place that was laid for one check. Destroying it clears it.
class LaidPlace {
 public:
  virtual ~LaidPlace() = default;
  [[nodiscard]] virtual const Place& place() = 0;
  /// The check begins now; what lies there at its beginning has been arranged.
  virtual void begin() = 0;
  /// The place's own notes, for the report.
  [[nodiscard]] virtual std::vector<Kept> leftovers() = 0;
};

enum class Outcome { Held, Failed, NotPlayed };

struct Played {
  const Check* check = nullptr;
  std::string theme{};
  Outcome outcome = Outcome::NotPlayed;
  /// Why it was not played; empty otherwise.
  std::string reason{};
  Findings findings{};
  std::chrono::milliseconds took{0};
};

/// What whoever started the set brings with him.
struct Offer {
  /// Whether persons are needed where a check names one, and whether one is there.
  bool needsPersons = false;
  bool personIsThere = false;
  /// Whether the application that is installed is the sample, with its own Core.
  bool sampleCore = true;
  Terms terms{};
};

using Lay = std::function<std::unique_ptr<LaidPlace>()>;

/// Why the check is not played with this offer; empty when it is.
[[nodiscard]] std::string refusal(const Check& check, const Offer& offer);

/// Never raises: what goes wrong is a finding.
[[nodiscard]] Played play(const Check& check, const Lay& lay, const Offer& offer);

}  // namespace tamo::acceptance
