#pragma once

#include <string>
#include <string_view>

#include "values/fatal.hpp"

namespace tamo::fuzz {

/// Ends the run, with the input as its finding, unless `holds`. `what` is what should have held.
inline void insist(bool holds, std::string_view what) {
  if (!holds) values::fatal("does not hold: " + std::string(what));
}

}  // namespace tamo::fuzz
