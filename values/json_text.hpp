#pragma once

#include <string>
#include <string_view>

namespace tamo::values {

/// A JSON string: `text` in quotes, escaped as the serialiser of macOS does it, "/" included. Everything
/// beyond ASCII stays as it is. `text` is UTF-8; other bytes would pass unchanged. Any thread.
[[nodiscard]] std::string jsonString(std::string_view text);

}  // namespace tamo::values
