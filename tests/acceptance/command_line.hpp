#pragma once

#include <expected>
#include <string>
#include <vector>

namespace tamo::acceptance {

/// What the programs that play a set are told.
struct Orders {
  /// The report's folder.
  std::string report = "build/acceptance";
  /// Checks or themes; all when there is none.
  std::vector<std::string> names{};
  bool withMe = false;
  bool list = false;
  std::size_t atOnce = 1;
  int repetitions = 20;
  int underLoad = 20;
  /// The name of the check whose stage lies.
  std::string canary{};
  /// Play each check on a stage that lies to it.
  bool canaries = false;
};

/// --report FOLDER, --with-me, --list, --at-once N, --repetitions N, --canary NAME, --canaries, and names. An unexpected answer is
/// the line for a person.
[[nodiscard]] std::expected<Orders, std::string> ordersOf(const std::vector<std::string>& words);

/// Every check with its theme and sentence, a line each.
[[nodiscard]] std::string listOfChecks();

}  // namespace tamo::acceptance
