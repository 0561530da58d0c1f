#pragma once

#include <expected>
#include <functional>
#include <string>
#include <vector>

#include "acceptance/scene.hpp"

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
  Terms terms{};
  /// The name of the check whose stage lies.
  std::string canary{};
  /// Every stage lies so, not only that of the check.
  bool everywhere = false;
  /// Play each check on a stage that lies to it.
  bool canaries = false;
};

/// --report FOLDER, --with-me, --list, --at-once N, --repetitions N, --canary NAME, --everywhere, --canaries, and names.
/// An unexpected answer is the line for a person.
[[nodiscard]] std::expected<Orders, std::string> ordersOf(const std::vector<std::string>& words);

/// The exit status of a program that plays what its words order, the first of which is its own name. A wrong use is told
/// on standard error, with the status 2; the list is told and nothing played.
[[nodiscard]] int playWords(int count, char** words, const std::function<int(const Orders&)>& play);

/// Every check with its theme and sentence, a line each.
[[nodiscard]] std::string listOfChecks();

}  // namespace tamo::acceptance
