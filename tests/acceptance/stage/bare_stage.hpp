#pragma once

#include <string>

#include "platform/stage/stage_root.hpp"

namespace tamo::acceptance {

/// Lays a stage in a directory of its own, with nothing installed. `programs` is the folder of the stage's programs.
/// The caller strikes it.
[[nodiscard]] stage::StageRoot bareStage(const std::string& programs);

}  // namespace tamo::acceptance
