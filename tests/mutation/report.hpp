#pragma once

#include <map>
#include <string>
#include <vector>

#include "mutation/campaign.hpp"

/// What came of the mutants, and which of the survivors are accounted for.
namespace tamo::mutation {

enum class Verdict {
  caughtByTest,
  caughtByTime,
  caughtByCrash,
  caughtBySecondLine,
  notCompiling,
  survived,
  notRun
};

/// A survivor that is meant to survive. It is known by its file, its line's text and its change, so that it stays
/// known when lines move.
struct Explained {
  std::string file;
  std::string lineText;
  std::string change;
  std::string reason;
};

/// Entries of four lines with an empty one between: the file, the line, the change, the reason. Lines that begin
/// with # are for the reader.
[[nodiscard]] std::vector<Explained> explainedIn(const std::string& text);

/// "rule: before -> after"; what is dropped becomes "nothing".
[[nodiscard]] std::string changeOf(const Planned& planned);

struct Count {
  std::size_t mutants = 0;
  std::map<Verdict, std::size_t> of;
  std::size_t explained = 0;

  /// Survivors without a reason.
  [[nodiscard]] std::size_t open() const;
};

struct Report {
  std::string text;
  /// Survivors that nobody explains, and explanations that no survivor needs.
  std::size_t open = 0;
};

/// A mutant without a verdict counts as not run. Explanations of files that were not tried are left alone, and all of
/// them when only a sample was.
[[nodiscard]] Report report(const std::vector<Planned>& plan, const std::map<std::size_t, Verdict>& verdicts,
                            const std::vector<Explained>& explained, bool sample);

}  // namespace tamo::mutation
