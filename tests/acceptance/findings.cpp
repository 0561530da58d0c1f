#include "acceptance/findings.hpp"

#include <algorithm>

namespace tamo::acceptance {

bool Findings::that(bool holds, const std::string& what, const std::string& seen) {
  judgements_.push_back({.holds = holds, .what = what, .seen = seen});
  return holds;
}

bool Findings::equal(const std::string& what, const std::string& expected, const std::string& seen) {
  const bool holds = expected == seen;
  judgements_.push_back({.holds = holds, .what = what, .expected = expected, .seen = seen});
  return holds;
}

void Findings::keep(const std::string& name, const std::string& text) {
  const auto taken = std::ranges::count_if(
      kept_, [&](const Kept& one) { return one.name == name || one.name.starts_with(name + " "); });
  kept_.push_back({taken == 0 ? name : name + " " + std::to_string(taken + 1), text});
}

bool Findings::allHold() const {
  return !judgements_.empty() && std::ranges::all_of(judgements_, &Judgement::holds);
}

}  // namespace tamo::acceptance
