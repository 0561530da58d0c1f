#pragma once

#include "support/actions.hpp"
#include "support/story.hpp"

namespace tamo::support {

/// The action in plain words. Pure.
[[nodiscard]] Story storyOf(const Action& action);

}  // namespace tamo::support
