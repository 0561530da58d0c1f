#pragma once

#include <string>
#include <string_view>

#include "acceptance/place.hpp"
#include "acceptance/stage/stage_companions.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::acceptance {

/// A line of the stage's log; absent for what is none.
[[nodiscard]] std::optional<Line> lineOfStage(std::string_view columns);

/// The log of a stage, and the ends of its companions.
class StageEvidence final : public Evidence {
 public:
  /// Both must outlive it.
  StageEvidence(const stage::StageRoot& root, const StageCompanions& companions)
      : root_(root), companions_(companions) {}

  [[nodiscard]] std::int64_t now() override;
  [[nodiscard]] std::vector<Line> lines(std::int64_t since, std::size_t endings) override;
  [[nodiscard]] std::string unreadable() override { return ""; }
  [[nodiscard]] std::vector<std::string> crashes(std::int64_t since) override;

 private:
  const stage::StageRoot& root_;
  const StageCompanions& companions_;
};

}  // namespace tamo::acceptance
