#pragma once

#include <map>
#include <string>
#include <vector>

#include "acceptance/place.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::acceptance {

/// The companions of a stage, which are children of this process.
class StageCompanions final : public Companions {
 public:
  /// Both must outlive it.
  StageCompanions(const stage::StageRoot& root, const Copies& copies) : root_(root), copies_(copies) {}

  int start(const Start& start) override;
  [[nodiscard]] bool ended(int started) override;
  std::string open(const std::string& url) override;
  [[nodiscard]] std::vector<pid_t> running() override;

  /// Whether all that were started are known to have ended.
  [[nodiscard]] bool allEnded() const;
  /// Those that ended by a signal, so far.
  [[nodiscard]] std::vector<std::string> crashes() const { return crashes_; }

 private:
  bool hasEnded(pid_t pid);
  [[nodiscard]] bool deliver(pid_t pid, const std::string& url) const;

  const stage::StageRoot& root_;
  const Copies& copies_;
  std::map<pid_t, bool> started_;
  std::vector<std::string> crashes_;
};

}  // namespace tamo::acceptance
