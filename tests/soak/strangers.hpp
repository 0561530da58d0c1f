#pragma once

#include <string>
#include <utility>
#include <vector>

#include "soak/bystander.hpp"
#include "soak/tally.hpp"

namespace tamo::soak {

/// The bystanders of one round, by where they stand.
class Strangers {
 public:
  /// False when the pid was not free.
  bool add(const std::string& where, const Bystander::Wish& wish);
  /// One as near to the pid as there is room.
  void addNextTo(pid_t pid);
  /// The pid of the first that was added; there must be one.
  [[nodiscard]] pid_t first() const { return all_.front().second.pid(); }
  /// Counts them, and as wrong each that was touched.
  void judge(Tally& tally, const std::string& round) const;

 private:
  std::vector<std::pair<std::string, Bystander>> all_;
};

}  // namespace tamo::soak
