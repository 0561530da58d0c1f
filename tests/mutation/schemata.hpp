#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "mutation/mutants.hpp"

/// A source that holds all of its mutants at once; which of them is played is chosen when the program runs. So a
/// layer is built once for a thousand mutants.
namespace tamo::mutation {

struct Numbered {
  std::size_t id = 0;
  Mutant mutant;
};

struct Rendered {
  std::string text;
  /// Whose code stands on a line (counted from 1) of the text; several share the line of what they replace.
  std::map<std::size_t, std::set<std::size_t>> owners;
};

/// Whether there is a place at which all of a mutant's edits can be chosen at run time.
[[nodiscard]] bool hasSlot(const Structure& structure, const Mutant& mutant);

/// The mutants given must have slots.
[[nodiscard]] Rendered withAll(std::string_view source, const std::vector<Numbered>& mutants);

/// The source with this one change and nothing else.
[[nodiscard]] std::string withOne(std::string_view source, const Mutant& mutant);

}  // namespace tamo::mutation
