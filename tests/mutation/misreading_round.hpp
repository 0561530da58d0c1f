#pragma once

#include <map>
#include <optional>

#include "mutation/campaign.hpp"
#include "mutation/misreadings.hpp"

/// A round of misreadings: each entry is put into a copy of the tree by itself, and what came of all of them is told.
/// What is built and run in between is the script's.
namespace tamo::mutation {

/// The files that an entry changes, with their texts then.
struct Changed {
  std::map<std::string, std::string> texts;
  /// The place is gone, or two changes are in each other's way; there are no texts then.
  std::optional<std::string> fault;
};

/// An entry's texts are looked for as they stand: a place that is not there exactly once is gone.
[[nodiscard]] Changed withMisreading(const std::filesystem::path& project, const Misreading& misreading);

/// Entries that change the same files stand together, and those of a table too: a build has less to do then.
void sortForBuilding(std::vector<Misreading>& entries);

enum class Outcome { caughtByTest, caughtByTime, caughtByCrash, survived, notCompiling, placeGone, notRun };

struct Finding {
  Outcome outcome = Outcome::notRun;
  /// What caught it; the test is empty when the program does not tell.
  std::string program;
  std::string test;
};

/// Lines of four fields between tabs: name, outcome, program, test. A later line counts.
[[nodiscard]] std::map<std::string, Finding> findingsIn(const std::string& text);

struct MisreadingReport {
  /// What is not caught, with its rule, and a table by table: how many, and what caught them.
  std::string text;
  std::size_t notCaught = 0;
};

[[nodiscard]] MisreadingReport reportOn(const std::vector<Misreading>& entries,
                                        const std::map<std::string, Finding>& findings);

}  // namespace tamo::mutation
