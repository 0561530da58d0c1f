#pragma once

#include <string_view>

namespace tamo::stage {

/// Writes to somebody who looks on and who matters nothing to what goes on: what a blocking descriptor does not take
/// at once is dropped, and a pipe that nobody reads any longer costs no more than that; no signal comes of it. Any
/// thread.
void showTo(int descriptor, std::string_view text);

}  // namespace tamo::stage
