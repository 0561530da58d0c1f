#include "values/open/binary_property_list.hpp"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "values/open/binary_property_list_shape.hpp"
#include "values/open/plist_library.hpp"

namespace tamo::values::open {
namespace {

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

/// What the library has read, as a value of ours. The nodes that it is handed stay their owner's.
class Reader {
 public:
  std::optional<PropertyList> read(std::string_view bytes) const {
    plist_t root = nullptr;
    library_.fromBinary(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    const auto owned = own(root);
    if (root == nullptr) return std::nullopt;
    return valueOf(root);
  }

 private:
  using OwnedNode = std::unique_ptr<void, decltype(&plist_free)>;
  [[nodiscard]] OwnedNode own(plist_t node) const { return {node, library_.free}; }

  [[nodiscard]] std::optional<PropertyList> valueOf(plist_t node) const {
    switch (library_.typeOf(node)) {
      case PLIST_BOOLEAN:
        return truthOf(node);
      case PLIST_UINT:
        return integerOf(node);
      case PLIST_REAL:
        return realOf(node);
      case PLIST_STRING:
        return textOf(node);
      case PLIST_ARRAY:
        return arrayOf(node);
      case PLIST_DICT:
        return dictionaryOf(node);
      default:
        return PropertyList{PropertyList::Other()};
    }
  }

  [[nodiscard]] PropertyList integerOf(plist_t node) const {
    std::uint64_t value = 0;
    library_.getInteger(node, &value);
    if (value <= std::numeric_limits<std::int64_t>::max()) {
      return PropertyList{static_cast<std::int64_t>(value)};
    }
    // The library tells the bits but not the sign. An integer of eight bytes is signed and one of sixteen is
    // not, and two nodes are equal only when they have the same width; a node made anew has eight bytes.
    const auto eightBytes = own(library_.newInteger(value));
    const bool isSigned = library_.compare(node, eightBytes.get()) != 0;
    return isSigned ? PropertyList{static_cast<std::int64_t>(value)} : PropertyList{value};
  }

  [[nodiscard]] PropertyList truthOf(plist_t node) const {
    std::uint8_t value = 0;
    library_.getTruth(node, &value);
    return PropertyList{value != 0};
  }

  [[nodiscard]] PropertyList realOf(plist_t node) const {
    double value = 0;
    library_.getReal(node, &value);
    return PropertyList{value};
  }

  [[nodiscard]] std::optional<PropertyList> textOf(plist_t node) const {
    std::uint64_t size = 0;
    const char* bytes = library_.textOf(node, &size);
    if (bytes == nullptr) return std::nullopt;
    return PropertyList{std::string(bytes, size)};
  }

  [[nodiscard]] std::optional<PropertyList> arrayOf(plist_t node) const {
    PropertyList::Array items;
    const auto size = library_.arraySize(node);
    for (std::uint32_t at = 0; at < size; ++at) {
      auto item = valueOf(library_.arrayItem(node, at));
      if (!item) return std::nullopt;
      items.push_back(std::move(*item));
    }
    return PropertyList{std::move(items)};
  }

  /// The library gives the iterator and each key away: both are memory of malloc's.
  [[nodiscard]] std::optional<PropertyList> dictionaryOf(plist_t node) const {
    PropertyList::Dictionary entries;
    void* iterator = nullptr;
    library_.newIterator(node, &iterator);
    const std::unique_ptr<void, FreeMemory> ownedIterator(iterator);
    const auto size = library_.dictionarySize(node);
    for (std::uint32_t at = 0; at < size; ++at) {
      char* key = nullptr;
      plist_t child = nullptr;
      library_.nextItem(node, iterator, &key, &child);
      const std::unique_ptr<char, FreeMemory> ownedKey(key);
      auto value = child == nullptr ? std::nullopt : valueOf(child);
      if (key == nullptr || !value) return std::nullopt;
      // Of a key that comes twice the first value counts, as on a Mac.
      entries.try_emplace(key, std::move(*value));
    }
    return PropertyList{std::move(entries)};
  }

  const PlistLibrary library_;
};

}  // namespace

/// The shape is looked at before the library is asked, because the library believes what a list says of its
/// own sizes.
std::optional<PropertyList> readBinaryPropertyList(std::string_view bytes) {
  if (!binaryListIsSound(bytes)) return std::nullopt;
  return Reader().read(bytes);
}

}  // namespace tamo::values::open
