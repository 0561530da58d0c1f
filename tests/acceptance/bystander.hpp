#pragma once

#include <string>
#include <sys/types.h>

namespace tamo::acceptance {

/// A process that has nothing to do with the companion and notes the signals that it gets. It lives as long as
/// this object.
class Bystander {
 public:
  Bystander();
  Bystander(const Bystander&) = delete;
  Bystander& operator=(const Bystander&) = delete;
  ~Bystander();

  /// What hit it: names of signals, or "gone"; empty when nothing did.
  [[nodiscard]] std::string signalled() const;

 private:
  std::string notes_;
  pid_t pid_ = 0;
};

}  // namespace tamo::acceptance
