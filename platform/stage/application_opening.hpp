#pragma once

#include <optional>
#include <string>

#include "platform/error.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// Opens the application at a stage path, as a double click does, and notes its path in the control room's
/// file "front": it is in front now. One whose program runs already from there is only brought to the front.
/// Absent means success. An error that was ordered by the setting "next-open-error" ("DOMAIN<TAB>CODE<TAB>
/// TEXT") comes once, in place of anything else. Blocks briefly; any thread.
[[nodiscard]] std::optional<platform::Error> openApplicationNow(const StageRoot& root,
                                                                const std::string& path);

}  // namespace tamo::stage
