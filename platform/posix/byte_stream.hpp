#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unistd.h>

#include "platform/posix/descriptor.hpp"

/// Bytes through a blocking descriptor, whatever the kernel's portions and however many signals come between.
/// Any thread.
namespace tamo::platform {

/// Reads to the end and gives the first `limit` bytes; the rest is read and dropped. Who knows the `size` of what there is,
/// as a file's is known, saves looking for the end behind it. Absent when reading fails.
[[nodiscard]] std::optional<std::string> readToEnd(
    int descriptor, std::size_t limit, std::size_t size = std::numeric_limits<std::size_t>::max());

/// Reads until `whole` makes something of all the bytes so far, and gives that. Absent when they come to their end, or
/// reading fails, before. `whole` takes a std::string_view and gives an optional.
template <class Whole>
[[nodiscard]] std::invoke_result_t<Whole, std::string_view> readUntilWhole(int descriptor, Whole whole) {
  std::string bytes;
  std::array<char, 65536> portion;
  for (;;) {
    const auto count = uninterrupted([&] { return ::read(descriptor, portion.data(), portion.size()); });
    if (count <= 0) return std::nullopt;
    bytes.append(portion.data(), static_cast<std::size_t>(count));
    if (auto made = whole(bytes)) return made;
  }
}

/// False when not everything could be written.
[[nodiscard]] bool writeAll(int descriptor, std::string_view bytes);

}  // namespace tamo::platform
