#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

/// Bytes through a blocking descriptor, whatever the kernel's portions and however many signals come between.
/// Any thread.
namespace tamo::platform {

/// Reads to the end and gives the first `limit` bytes; the rest is read and dropped. Who knows the `size` of what there is,
/// as a file's is known, saves looking for the end behind it. Absent when reading fails.
[[nodiscard]] std::optional<std::string> readToEnd(
    int descriptor, std::size_t limit, std::size_t size = std::numeric_limits<std::size_t>::max());

/// False when not everything could be written.
[[nodiscard]] bool writeAll(int descriptor, std::string_view bytes);

}  // namespace tamo::platform
