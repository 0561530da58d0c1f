#pragma once

#include <string>
#include <string_view>

namespace tamo::fuzz {

/// The repair of UTF-8 a second time, by what a character is instead of by what bytes may follow which: the
/// number that its bytes spell must need that many bytes, and be no surrogate.
[[nodiscard]] std::string describedRepair(std::string_view bytes);

}  // namespace tamo::fuzz
