#include "platform/fatal.hpp"

#include <cstdio>
#include <cstdlib>

namespace tamo::platform {

void fatal(std::string_view reason) noexcept {
  std::fprintf(stderr, "fatal: %.*s\n", static_cast<int>(reason.size()), reason.data());
  std::abort();
}

}  // namespace tamo::platform
