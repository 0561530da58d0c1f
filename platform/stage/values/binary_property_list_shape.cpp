#include "platform/stage/values/binary_property_list_shape.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/property_list_limits.hpp"

namespace tamo::stage {
namespace {

using platform::deepestNesting;
using platform::mostValues;

/// Walks the objects from the top one, along the references of arrays and dictionaries.
class Walk {
 public:
  explicit Walk(std::string_view bytes) : bytes_(bytes) {}

  [[nodiscard]] bool isSound() {
    if (bytes_.size() < trailerSize) return false;
    const auto trailer = bytes_.size() - trailerSize;
    offsetSize_ = number(trailer + 6, 1).value_or(0);
    referenceSize_ = number(trailer + 7, 1).value_or(0);
    table_ = number(trailer + 24, 8).value_or(0);
    const auto top = number(trailer + 16, 8);
    return top && objectIsSound(*top, 0);
  }

 private:
  static constexpr std::size_t trailerSize = 32;
  enum Kind : std::uint64_t {
    Integer = 0x1,
    Text = 0x5,
    WideText = 0x6,
    Array = 0xA,
    Set = 0xC,
    Dictionary = 0xD
  };

  /// The big-endian number of `size` bytes at `at`; absent when it is not within the bytes.
  [[nodiscard]] std::optional<std::uint64_t> number(std::uint64_t at, std::uint64_t size) const {
    if (size == 0 || size > 8 || at > bytes_.size() || size > bytes_.size() - at) return std::nullopt;
    std::uint64_t value = 0;
    for (const char byte : bytes_.substr(at, size))
      value = value << 8U | static_cast<unsigned char>(byte);
    return value;
  }

  /// An entry of a table of equally wide numbers.
  [[nodiscard]] std::optional<std::uint64_t> tableEntry(std::uint64_t table, std::uint64_t index,
                                                        std::uint64_t width) const {
    if (table > bytes_.size() || index > bytes_.size()) return std::nullopt;
    return number(table + index * width, width);
  }

  [[nodiscard]] bool objectIsSound(std::uint64_t object, std::size_t depth) {
    if (depth > deepestNesting || ++values_ > mostValues) return false;
    const auto at = tableEntry(table_, object, offsetSize_);
    const auto marker = at ? number(*at, 1) : std::nullopt;
    if (!marker) return false;
    const auto kind = *marker >> 4U;
    const auto detail = *marker & 0xFU;
    if (kind == Integer) return integerIsSound(*at, detail);
    if (kind == Array) return containerIsSound(*at, detail, 1, depth);
    if (kind == Dictionary) return containerIsSound(*at, detail, 2, depth);
    return kind != Set;
  }

  /// The width of an integer is two to the power of `detail`.
  [[nodiscard]] bool integerIsSound(std::uint64_t at, std::uint64_t detail) const {
    if (detail < 4) return true;
    return detail == 4 && number(at + 1, 8) == 0U;
  }

  /// Where the contents of an object begin, behind its marker and its count when that does not fit into the
  /// marker, and how many items they are.
  struct Contents {
    std::uint64_t at;
    std::uint64_t count;
  };

  [[nodiscard]] std::optional<Contents> contents(std::uint64_t at, std::uint64_t detail) const {
    constexpr std::uint64_t countFollows = 0xF;
    if (detail != countFollows) return Contents{.at = at + 1, .count = detail};
    const std::uint64_t width = std::uint64_t{1} << (number(at + 1, 1).value_or(0xF) & 0xFU);
    const auto count = number(at + 2, width);
    if (!count) return std::nullopt;
    return Contents{.at = at + 2 + width, .count = *count};
  }

  /// A container is `perItem` references for each item; a dictionary has those of all its keys in front.
  [[nodiscard]] bool containerIsSound(std::uint64_t at, std::uint64_t detail, std::uint64_t perItem,
                                      std::size_t depth) {
    const auto inside = contents(at, detail);
    if (!inside || inside->count > mostValues) return false;
    for (std::uint64_t index = 0; index < inside->count * perItem; ++index) {
      const auto object = tableEntry(inside->at, index, referenceSize_);
      if (!object || !objectIsSound(*object, depth + 1)) return false;
      const bool isKey = perItem == 2 && index < inside->count;
      if (isKey && !keyIsSound(*object)) return false;
    }
    return true;
  }

  /// A text without a zero in it, in units of one byte or of two.
  [[nodiscard]] bool keyIsSound(std::uint64_t object) const {
    const auto at = tableEntry(table_, object, offsetSize_);
    const auto marker = at ? number(*at, 1) : std::nullopt;
    if (!marker) return false;
    const auto kind = *marker >> 4U;
    const auto inside = contents(*at, *marker & 0xFU);
    if ((kind != Text && kind != WideText) || !inside || inside->count > bytes_.size()) return false;
    const std::uint64_t width = kind == Text ? 1 : 2;
    for (std::uint64_t index = 0; index < inside->count; ++index)
      if (number(inside->at + index * width, width).value_or(0) == 0) return false;
    return true;
  }

  std::string_view bytes_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t table_ = 0;
  std::size_t values_ = 0;
};

}  // namespace

bool binaryListIsSound(std::string_view bytes) {
  return Walk(bytes).isSound();
}

}  // namespace tamo::stage
