#pragma once

#include <sys/types.h>
#include <vector>

#include "acceptance/place.hpp"

namespace tamo::acceptance {

/// The companions of a Mac, started as a user or the product starts them: by `open`.
class MacCompanions final : public Companions {
 public:
  /// Must outlive it.
  explicit MacCompanions(const Copies& copies) : copies_(copies) {}

  int start(const Start& start) override;
  [[nodiscard]] bool ended(int started) override;
  std::string open(const std::string& url) override;
  [[nodiscard]] std::vector<pid_t> running() override;

 private:
  struct Opening {
    pid_t tool;
    bool toolEnded;
    /// Whether the tool waits for the application's end.
    bool waits;
  };
  const Copies& copies_;
  std::vector<Opening> started_;
};

}  // namespace tamo::acceptance
