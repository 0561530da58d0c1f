#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "values/property_list.hpp"

namespace tamo::values::open {

/// Builds a property list from the events of an XML parser. Each event answers whether the document can still
/// be a property list; after a no there are no more events. One thread.
class PropertyListBuilder {
 public:
  /// The beginning of an element, and whether it is written as an empty one ("<data/>").
  [[nodiscard]] bool begin(std::string_view name, bool isEmpty);
  /// A piece of text within an element; an element can have several.
  [[nodiscard]] bool text(std::string_view piece);
  /// A character within an element that is written as a reference ("&amp;", "&#38;").
  [[nodiscard]] bool reference(std::string_view character);
  /// The beginning of a literal part within an element ("<![CDATA[").
  [[nodiscard]] bool literal() const;
  /// A comment or an instruction.
  [[nodiscard]] bool aside() const;
  /// The end of the element that began last.
  [[nodiscard]] bool end();

  /// The list, after the end of the outermost element.
  [[nodiscard]] std::optional<PropertyList> result();

 private:
  enum class Element { Plist, Dict, Array, Key, String, Real, Integer, True, False, Date, Data };

  /// An element whose end has not come yet, with what it holds so far.
  struct Open {
    Element element;
    /// The text of anything but a container.
    std::string text = {};
    /// The dictionary or array as it grows; the value of a <plist>.
    std::optional<PropertyList> list = std::nullopt;
    /// The key of a dictionary that waits for its value.
    std::optional<std::string> key = std::nullopt;
  };

  static std::optional<Element> elementNamed(std::string_view name);
  static bool isContainer(Element element) { return element <= Element::Array; }
  /// Whether macOS takes the text with references and literal parts in it.
  static bool takesAnySpelling(Element element) {
    return element >= Element::Key && element <= Element::Real;
  }
  static std::optional<PropertyList> valueOf(Open open);
  [[nodiscard]] bool mayBegin(Element element) const;
  void put(PropertyList value);

  std::vector<Open> open_;
  /// How many values have begun.
  std::size_t values_ = 0;
  std::optional<PropertyList> result_;
};

}  // namespace tamo::values::open
