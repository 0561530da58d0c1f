#include "values/fatal.hpp"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace tamo::values {
namespace {

/// Not handed down like everything else of the host: what is fatal comes from the deepest places, which know
/// nobody.
std::atomic<LastWords> lastWords = nullptr;

}  // namespace

void fatal(std::string_view reason) noexcept {
  std::fprintf(stderr, "fatal: %.*s\n", static_cast<int>(reason.size()), reason.data());
  // Taken before it is called, so that what is fatal in there, or meanwhile on another thread, only aborts.
  if (const auto say = lastWords.exchange(nullptr)) say(reason);
  std::abort();
}

void setLastWords(LastWords say) noexcept {
  lastWords = say;
}

}  // namespace tamo::values
