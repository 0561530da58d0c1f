#pragma once

#include <cstdlib>

/// Included by the sources that the mutator writes: tells which of their mutants is to be played.
namespace tamo_mutation {

inline long chosen() {
  static const long id = [] {
    const char* text = std::getenv("TAMO_MUTANT");
    return text == nullptr ? 0L : std::strtol(text, nullptr, 10);
  }();
  return id;
}

/// Numbers begin with 1; without a choice every source is what it was.
inline bool is(long id) {
  return chosen() == id;
}

}  // namespace tamo_mutation
