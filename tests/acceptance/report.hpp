#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "acceptance/player.hpp"
#include "acceptance/redaction.hpp"

/// The report: a folder with report.md for people, report.json for programs, and a folder a check with its log lines,
/// prints and notes. The texts are pure; writing them is one function.
namespace tamo::acceptance {

struct Report {
  PlaceFacts place;
  /// ISO 8601, UTC.
  std::string begun;
  std::chrono::milliseconds took{0};
  std::vector<Played> checks{};
};

struct Counts {
  std::size_t held = 0;
  std::size_t failed = 0;
  std::size_t notPlayed = 0;
};

[[nodiscard]] Counts countsOf(const std::vector<Played>& checks);
/// "held", "failed" or "not played here".
[[nodiscard]] std::string outcomeText(Outcome outcome);
/// "41.2 s".
[[nodiscard]] std::string secondsText(std::chrono::milliseconds time);

[[nodiscard]] std::string markdownOf(const Report& report);
[[nodiscard]] std::string jsonOf(const Report& report);

/// Removes what an earlier report of the folder kept of any check, so that no two are mixed. A folder without a report
/// is left as it is.
void clearReport(const std::string& folder);
/// Writes what one check keeps, and the two texts about all of them so far, without the secrets. False when something
/// could not be written.
[[nodiscard]] bool writeKept(const Played& played, const std::string& folder,
                             const std::vector<Secret>& secrets);
[[nodiscard]] bool writeTexts(const Report& report, const std::string& folder,
                              const std::vector<Secret>& secrets);

}  // namespace tamo::acceptance
