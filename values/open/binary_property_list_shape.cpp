#include "values/open/binary_property_list_shape.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "values/property_list_limits.hpp"

namespace tamo::values::open {
namespace {

/// Walks the objects from the top one, along the references of arrays and dictionaries.
class Walk {
 public:
  explicit Walk(std::string_view bytes) : bytes_(bytes) {}

  [[nodiscard]] bool isSound() { return tableIsExact() && objectIsSound(top_, 0); }

 private:
  static constexpr std::size_t frontSize = 8;
  static constexpr std::size_t trailerSize = 32;
  enum Kind : std::uint64_t {
    Simple = 0x0,
    Integer = 0x1,
    Real = 0x2,
    Date = 0x3,
    Data = 0x4,
    Text = 0x5,
    WideText = 0x6,
    Reference = 0x8,
    Array = 0xA,
    Dictionary = 0xD
  };

  /// The big-endian number of `size` bytes at `at`, of which the last eight count; absent when it is not within
  /// `bytes`.
  [[nodiscard]] static std::optional<std::uint64_t> number(std::string_view bytes, std::uint64_t at,
                                                           std::uint64_t size) {
    if (at > bytes.size() || size > bytes.size() - at) return std::nullopt;
    std::uint64_t value = 0;
    for (const char byte : bytes.substr(at, size))
      value = value << 8U | static_cast<unsigned char>(byte);
    return value;
  }

  /// Whether a number of `width` bytes can be as large as `limit`. A table whose numbers cannot name all that
  /// it counts is refused by macOS.
  [[nodiscard]] static bool reaches(std::uint64_t width, std::uint64_t limit) {
    return width >= 8 || limit < std::uint64_t{1} << 8U * width;
  }

  /// The objects lie behind the first eight bytes, then comes one offset for each of them, then what says so.
  [[nodiscard]] bool tableIsExact() {
    if (bytes_.size() <= frontSize + trailerSize) return false;
    const auto trailer = bytes_.size() - trailerSize;
    const auto stated = [this, trailer](std::uint64_t at, std::uint64_t size) {
      return number(bytes_, trailer + at, size).value_or(0);
    };
    offsetSize_ = stated(6, 1);
    referenceSize_ = stated(7, 1);
    count_ = stated(8, 8);
    top_ = stated(16, 8);
    const auto table = stated(24, 8);
    if (offsetSize_ == 0 || referenceSize_ == 0 || table <= frontSize) return false;
    // The count first, so that the product behind it cannot wrap.
    if (count_ > bytes_.size() || table > trailer || table + count_ * offsetSize_ != trailer) return false;
    if (!reaches(referenceSize_, count_) || !reaches(offsetSize_, table)) return false;
    objects_ = bytes_.substr(0, table);
    for (std::uint64_t object = 0; object < count_; ++object)
      if (offset(object) >= table) return false;
    return true;
  }

  /// Where an object of the table begins.
  [[nodiscard]] std::optional<std::uint64_t> offset(std::uint64_t object) const {
    if (object >= count_) return std::nullopt;
    return number(bytes_, objects_.size() + object * offsetSize_, offsetSize_);
  }

  /// Each object is looked at once for every time that it is named, because that is how often the library
  /// would copy it; the limits end what refers to itself.
  [[nodiscard]] bool objectIsSound(std::uint64_t object, std::size_t depth) {
    if (depth > deepestNesting || ++values_ > mostValues) return false;
    const auto at = offset(object).value_or(0);
    if (at < frontSize) return false;
    const auto marker = number(objects_, at, 1).value_or(0);
    const auto detail = marker & 0xFU;
    switch (marker >> 4U) {
      case Simple:
        return detail == 8 || detail == 9;
      case Integer:
        return integerIsSound(at, detail);
      case Real:
        return (detail == 2 || detail == 3) && number(objects_, at + 1, std::uint64_t{1} << detail);
      case Date:
        return detail == 3 && number(objects_, at + 1, 8);
      case Data:
        return contents(at, detail, 1).has_value();
      case Text:
        return textIsSound(at, detail);
      case WideText:
        return wideTextIsSound(at, detail);
      case Reference:
        return detail < 8 && number(objects_, at + 1, detail + 1);
      case Array:
        return containerIsSound(at, detail, 1, depth);
      case Dictionary:
        return containerIsSound(at, detail, 2, depth);
      default:
        return false;
    }
  }

  /// The width of an integer is two to the power of `detail`. Sixteen bytes are how an integer above the signed range
  /// is written; the library reads the lower eight alone, so the others have to be zero.
  [[nodiscard]] bool integerIsSound(std::uint64_t at, std::uint64_t detail) const {
    if (detail < 4) return number(objects_, at + 1, std::uint64_t{1} << detail).has_value();
    return detail == 4 && number(objects_, at + 1, 8) == 0U && number(objects_, at + 9, 8);
  }

  /// Where the items of an object begin, behind its marker and its count when that does not fit into the
  /// marker, and how many they are.
  struct Contents {
    std::uint64_t at;
    std::uint64_t count;
  };

  /// Absent when the items, each of that width, do not all lie among the objects.
  [[nodiscard]] std::optional<Contents> contents(std::uint64_t at, std::uint64_t detail,
                                                 std::uint64_t width) const {
    constexpr std::uint64_t countFollows = 0xF;
    Contents inside{.at = at + 1, .count = detail};
    if (detail == countFollows) {
      const auto marker = number(objects_, at + 1, 1).value_or(0);
      const auto size = std::uint64_t{1} << (marker & 0xFU);
      const auto count = number(objects_, at + 2, size);
      if (marker >> 4U != Integer || size > 8 || !count) return std::nullopt;
      inside = {.at = at + 2 + size, .count = *count};
    }
    if (inside.count > (objects_.size() - inside.at) / width) return std::nullopt;
    return inside;
  }

  /// The library cuts a text at a zero and hands out the bytes beyond ASCII as they are, which is no UTF-8.
  [[nodiscard]] bool textIsSound(std::uint64_t at, std::uint64_t detail) const {
    const auto inside = contents(at, detail, 1);
    if (!inside) return false;
    const auto text = objects_.substr(inside->at, inside->count);
    return std::all_of(text.begin(), text.end(), [](char character) {
      return character != '\0' && static_cast<unsigned char>(character) < 0x80;
    });
  }

  /// A text in units of UTF-16. The upper six bits of a unit tell half of a pair: 36 the first, 37 the second, in
  /// hexadecimal. A half by itself is a character that UTF-8 cannot hold.
  [[nodiscard]] bool wideTextIsSound(std::uint64_t at, std::uint64_t detail) const {
    const auto inside = contents(at, detail, 2);
    if (!inside) return false;
    bool lowHalfFollows = false;
    for (std::uint64_t index = 0; index < inside->count; ++index) {
      const auto unit = number(objects_, inside->at + index * 2, 2).value_or(0);
      const bool isLowHalf = unit >> 10U == 0x37;
      if (unit == 0 || isLowHalf != lowHalfFollows) return false;
      lowHalfFollows = unit >> 10U == 0x36;
    }
    return !lowHalfFollows;
  }

  /// A container is `perItem` references for each item; a dictionary has those of all its keys in front.
  [[nodiscard]] bool containerIsSound(std::uint64_t at, std::uint64_t detail, std::uint64_t perItem,
                                      std::size_t depth) {
    const auto inside = contents(at, detail, referenceSize_ * perItem);
    if (!inside) return false;
    for (std::uint64_t index = 0; index < inside->count * perItem; ++index) {
      const auto object = number(objects_, inside->at + index * referenceSize_, referenceSize_).value_or(0);
      const bool isKey = perItem == 2 && index < inside->count;
      if (!objectIsSound(object, depth + 1) || (isKey && !isText(object))) return false;
    }
    return true;
  }

  [[nodiscard]] bool isText(std::uint64_t object) const {
    const auto kind = number(objects_, offset(object).value_or(0), 1).value_or(0) >> 4U;
    return kind == Text || kind == WideText;
  }

  std::string_view bytes_;
  /// Without the table and what is behind it.
  std::string_view objects_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t count_ = 0;
  std::uint64_t top_ = 0;
  std::size_t values_ = 0;
};

}  // namespace

bool binaryListIsSound(std::string_view bytes) {
  return Walk(bytes).isSound();
}

}  // namespace tamo::values::open
