#include "values/open/binary_property_list.hpp"
#include "values/open/xml_property_list.hpp"
#include "values/property_list.hpp"

namespace tamo::values {

std::optional<PropertyList> readPropertyList(std::string_view bytes) {
  // The lists of bundles and agents are a few kilobytes; this bound keeps the libraries within the sizes that
  // they can be told.
  constexpr std::size_t largest = std::size_t{16} << 20U;
  if (bytes.size() > largest) return std::nullopt;
  return bytes.starts_with("bplist") ? open::readBinaryPropertyList(bytes) : open::readXmlPropertyList(bytes);
}

}  // namespace tamo::values
