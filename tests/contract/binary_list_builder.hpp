#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tamo {

/// Puts a binary property list together byte by byte, sound or not. Offsets take two bytes and references
/// one; the top object is the first one unless the test says otherwise.
class BinaryListBuilder {
 public:
  std::uint64_t top = 0;
  /// The size of the table of offsets, when it is to differ from the number of objects.
  std::uint64_t statedCount = 0;
  /// Bytes between the table of offsets and the trailer, where none belong.
  std::string behindTable;

  BinaryListBuilder& add(std::string_view object) {
    offsets_.emplace_back(std::nullopt);
    objects_.emplace_back(object);
    return *this;
  }
  /// An object that lies at `offset`, whatever is there.
  BinaryListBuilder& addOffset(std::uint64_t offset) {
    offsets_.emplace_back(offset);
    objects_.emplace_back();
    return *this;
  }
  /// At most 14 characters, all ASCII.
  BinaryListBuilder& addText(const std::string& text) {
    return add(static_cast<char>(0x50 + text.size()) + text);
  }
  /// An array of at most 14 references.
  BinaryListBuilder& addArray(const std::string& references) {
    return add(static_cast<char>(0xA0 + references.size()) + references);
  }
  /// A dictionary of at most 14 entries: the references of the keys, then those of the values.
  BinaryListBuilder& addDictionary(const std::string& keys, const std::string& values) {
    return add(static_cast<char>(0xD0 + keys.size()) + keys + values);
  }

  [[nodiscard]] std::string bytes() const {
    std::string list = "bplist00";
    std::string offsets;
    for (std::size_t at = 0; at < objects_.size(); ++at) {
      offsets += bigEndian(offsets_[at].value_or(list.size()), 2);
      list += objects_[at];
    }
    const auto table = list.size();
    list += offsets + behindTable + std::string(6, '\0') + "\x02\x01";
    list += bigEndian(statedCount == 0 ? objects_.size() : statedCount, 8);
    return list + bigEndian(top, 8) + bigEndian(table, 8);
  }

 private:
  static std::string bigEndian(std::uint64_t value, std::size_t size) {
    std::string bytes(size, '\0');
    for (auto at = bytes.rbegin(); at != bytes.rend(); ++at, value >>= 8U) {
      *at = static_cast<char>(value & 0xFFU);
    }
    return bytes;
  }

  std::vector<std::string> objects_;
  /// Where each lies when that is not just behind the one before it.
  std::vector<std::optional<std::uint64_t>> offsets_;
};

}  // namespace tamo
