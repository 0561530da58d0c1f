#include "simulation/verdict.hpp"

#include <array>
#include <utility>

namespace tamo::simulation {
namespace {

struct Wording {
  std::string_view name;
  std::string_view sentence;
};

#define TAMO_INVARIANT_WORDING(name, sentence) Wording{#name, sentence},
constexpr std::array wordings{TAMO_INVARIANTS(TAMO_INVARIANT_WORDING)};
#undef TAMO_INVARIANT_WORDING

}  // namespace

std::string_view nameOf(Invariant invariant) {
  return wordings.at(static_cast<std::size_t>(invariant)).name;
}

std::string_view sentenceOf(Invariant invariant) {
  return wordings.at(static_cast<std::size_t>(invariant)).sentence;
}

void Verdict::broken(Violation violation) {
  trace_.note(violation.at, violation.who, "BROKEN ", nameOf(violation.invariant), ": ", violation.detail);
  violations_.push_back(std::move(violation));
}

}  // namespace tamo::simulation
