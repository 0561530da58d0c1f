#include "values/open/binary_property_list.hpp"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <plist/plist.h>
#include <string>
#include <utility>

#include "values/open/binary_property_list_shape.hpp"

namespace tamo::values::open {
namespace {

struct FreeNode {
  void operator()(plist_t node) const { plist_free(node); }
};
using OwnedNode = std::unique_ptr<void, FreeNode>;

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

std::optional<PropertyList> valueOf(plist_t node);

PropertyList integerOf(plist_t node) {
  std::uint64_t value = 0;
  plist_get_uint_val(node, &value);
  if (value <= std::numeric_limits<std::int64_t>::max()) {
    return PropertyList{static_cast<std::int64_t>(value)};
  }
  // The library tells the bits but not the sign. An integer of eight bytes is signed and one of sixteen is
  // not, and two nodes are equal only when they have the same width; a node made anew has eight bytes.
  const OwnedNode eightBytes(plist_new_uint(value));
  const bool isSigned = plist_compare_node_value(node, eightBytes.get()) != 0;
  return isSigned ? PropertyList{static_cast<std::int64_t>(value)} : PropertyList{value};
}

PropertyList truthOf(plist_t node) {
  std::uint8_t value = 0;
  plist_get_bool_val(node, &value);
  return PropertyList{value != 0};
}

PropertyList realOf(plist_t node) {
  double value = 0;
  plist_get_real_val(node, &value);
  return PropertyList{value};
}

std::optional<PropertyList> textOf(plist_t node) {
  std::uint64_t size = 0;
  const char* bytes = plist_get_string_ptr(node, &size);
  if (bytes == nullptr) return std::nullopt;
  return PropertyList{std::string(bytes, size)};
}

std::optional<PropertyList> arrayOf(plist_t node) {
  PropertyList::Array items;
  const auto size = plist_array_get_size(node);
  for (std::uint32_t at = 0; at < size; ++at) {
    auto item = valueOf(plist_array_get_item(node, at));
    if (!item) return std::nullopt;
    items.push_back(std::move(*item));
  }
  return PropertyList{std::move(items)};
}

/// The library gives the iterator and each key away: both are memory of malloc's.
std::optional<PropertyList> dictionaryOf(plist_t node) {
  PropertyList::Dictionary entries;
  void* iterator = nullptr;
  plist_dict_new_iter(node, &iterator);
  const std::unique_ptr<void, FreeMemory> ownedIterator(iterator);
  const auto size = plist_dict_get_size(node);
  for (std::uint32_t at = 0; at < size; ++at) {
    char* key = nullptr;
    plist_t child = nullptr;
    plist_dict_next_item(node, iterator, &key, &child);
    const std::unique_ptr<char, FreeMemory> ownedKey(key);
    auto value = child == nullptr ? std::nullopt : valueOf(child);
    if (key == nullptr || !value) return std::nullopt;
    // Of a key that comes twice the first value counts, as on a Mac.
    entries.try_emplace(key, std::move(*value));
  }
  return PropertyList{std::move(entries)};
}

std::optional<PropertyList> valueOf(plist_t node) {
  switch (plist_get_node_type(node)) {
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

}  // namespace

/// The shape is looked at before the library is asked, because the library believes what a list says of its
/// own sizes.
std::optional<PropertyList> readBinaryPropertyList(std::string_view bytes) {
  if (!binaryListIsSound(bytes)) return std::nullopt;
  plist_t root = nullptr;
  plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
  const OwnedNode owned(root);
  if (root == nullptr) return std::nullopt;
  return valueOf(root);
}

}  // namespace tamo::values::open
