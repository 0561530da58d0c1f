#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Bytes through a blocking descriptor, whatever the kernel's portions and however many signals come between.
/// Any thread.
namespace tamo::platform {

/// Reads to the end and gives the first `limit` bytes; the rest is read and dropped. Absent when reading
/// fails.
[[nodiscard]] std::optional<std::string> readToEnd(int descriptor, std::size_t limit);

/// False when not everything could be written.
[[nodiscard]] bool writeAll(int descriptor, std::string_view bytes);

}  // namespace tamo::platform
