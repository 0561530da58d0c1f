#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "mutation/structure.hpp"

/// The changes that a source is tried with, each one small enough to be a slip of the hand.
namespace tamo::mutation {

struct Edit {
  Range range;
  std::string text;
};

/// One change; it has two edits where two statements change places.
struct Mutant {
  std::string_view rule;
  std::vector<Edit> edits;
};

/// In the order in which they stand in the source; the same for the same source.
[[nodiscard]] std::vector<Mutant> mutants(const std::vector<Token>& tokens, const Structure& structure);

/// The tokens of a range as they are written, on one line and without comments.
[[nodiscard]] std::string written(const std::vector<Token>& tokens, Range range);

/// The same, with an edit that lies within the range.
[[nodiscard]] std::string written(const std::vector<Token>& tokens, Range range, const Edit& edit);

}  // namespace tamo::mutation
