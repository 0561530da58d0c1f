#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "stage/picture/journal_reading.hpp"
#include "stage/picture/lives.hpp"

/// What is drawn: the moments since the last action of a journal began, and who lived meanwhile. Pure.
namespace tamo::stage {

/// The stage as it is when it is looked at.
struct Present {
  /// By the journal's clock; absent when only the journal is at hand.
  std::optional<std::int64_t> now{};
  std::set<std::int32_t> living{};
};

struct Scene {
  /// All times are those since the action began. What came before is below 0: lives, and the locks of others.
  std::vector<Moment> moments{};
  std::vector<Life> lives{};
  /// Whose action it is, among the lives.
  std::size_t companion = 0;
  std::int64_t until = 0;

  [[nodiscard]] const Life& self() const { return lives[companion]; }
};

/// Absent when no action has begun by this journal.
[[nodiscard]] std::optional<Scene> lastScene(const JournalReading& reading, const Present& present);

}  // namespace tamo::stage
