#include "values/open/property_list_builder.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "values/open/property_list_scalars.hpp"
#include "values/property_list_limits.hpp"

namespace tamo::values::open {
namespace {

bool isAscii(char character) {
  return static_cast<unsigned char>(character) < 0x80;
}

}  // namespace

/// Counted before it is built, so that a list that is too deep or too large is given up where it becomes so.
/// A Mac takes an empty date and empty data for faults.
bool PropertyListBuilder::begin(std::string_view name, bool isEmpty) {
  const auto element = elementNamed(name);
  if (!element || open_.size() > deepestNesting || !mayBegin(*element)) return false;
  if (isEmpty && (*element == Element::Date || *element == Element::Data)) return false;
  const bool isValue = *element != Element::Plist && *element != Element::Key;
  if (isValue && ++values_ > mostValues) return false;
  Open opened{.element = *element};
  if (*element == Element::Dict) opened.list = PropertyList{PropertyList::Dictionary()};
  if (*element == Element::Array) opened.list = PropertyList{PropertyList::Array()};
  open_.push_back(std::move(opened));
  return true;
}

/// Around the elements of a container there is white space and nothing else. Data is not decoded, because
/// nobody asks for it.
bool PropertyListBuilder::text(std::string_view piece) {
  auto& open = open_.back();
  if (isContainer(open.element)) return piece.find_first_not_of(" \t\n\r") == std::string_view::npos;
  if (open.element == Element::Data) return std::all_of(piece.begin(), piece.end(), &isAscii);
  open.text += piece;
  return true;
}

bool PropertyListBuilder::reference(std::string_view character) {
  auto& open = open_.back();
  if (takesAnySpelling(open.element)) open.text += character;
  return takesAnySpelling(open.element) || open.element == Element::Data;
}

/// A Mac takes integers and dates from the document as they are written, and finds none in a literal part.
bool PropertyListBuilder::literal() const {
  return takesAnySpelling(open_.back().element);
}

bool PropertyListBuilder::aside() const {
  return open_.empty() || isContainer(open_.back().element);
}

/// A key is kept until its value has ended, which is what puts both into the dictionary.
bool PropertyListBuilder::end() {
  auto open = std::move(open_.back());
  open_.pop_back();
  if (open.element == Element::Key) {
    open_.back().key = std::move(open.text);
    return true;
  }
  auto value = valueOf(std::move(open));
  if (!value) return false;
  put(std::move(*value));
  return true;
}

std::optional<PropertyList> PropertyListBuilder::result() {
  return std::move(result_);
}

auto PropertyListBuilder::elementNamed(std::string_view name) -> std::optional<Element> {
  using enum Element;
  using Named = std::pair<std::string_view, Element>;
  constexpr std::array elements{
      Named{"plist", Plist},   Named{"dict", Dict}, Named{"array", Array},     Named{"key", Key},
      Named{"string", String}, Named{"real", Real}, Named{"integer", Integer}, Named{"true", True},
      Named{"false", False},   Named{"date", Date}, Named{"data", Data},
  };
  const auto* found = std::find_if(elements.begin(), elements.end(),
                                   [name](const Named& element) { return element.first == name; });
  if (found == elements.end()) return std::nullopt;
  return found->second;
}

/// In a dictionary a key and a value take turns. <plist> is around everything, holds one value, and occurs
/// once.
bool PropertyListBuilder::mayBegin(Element element) const {
  if (open_.empty()) return element == Element::Plist;
  if (element == Element::Plist) return false;
  const auto& parent = open_.back();
  switch (parent.element) {
    case Element::Plist:
      return !parent.list && element != Element::Key;
    case Element::Array:
      return element != Element::Key;
    case Element::Dict:
      return parent.key.has_value() != (element == Element::Key);
    default:
      return false;
  }
}

std::optional<PropertyList> PropertyListBuilder::valueOf(Open open) {
  switch (open.element) {
    case Element::Dict:
      // The last key has no value.
      if (open.key) return std::nullopt;
      return std::move(open.list);
    case Element::Plist:
    case Element::Array:
      return std::move(open.list);
    case Element::Integer:
      return integerValue(open.text);
    case Element::Real:
      return realValue(open.text);
    case Element::True:
    case Element::False:
      if (!open.text.empty()) return std::nullopt;
      return PropertyList{open.element == Element::True};
    case Element::Date:
      if (!isDate(open.text)) return std::nullopt;
      return PropertyList{PropertyList::Other()};
    case Element::Data:
      return PropertyList{PropertyList::Other()};
    default:
      return PropertyList{std::move(open.text)};
  }
}

void PropertyListBuilder::put(PropertyList value) {
  if (open_.empty()) {
    result_ = std::move(value);
    return;
  }
  auto& parent = open_.back();
  if (parent.element == Element::Plist) {
    parent.list = std::move(value);
  } else if (parent.element == Element::Array) {
    std::get<PropertyList::Array>(parent.list->value).push_back(std::move(value));
  } else {
    auto& entries = std::get<PropertyList::Dictionary>(parent.list->value);
    // Of a key that comes twice the last value counts, as on a Mac.
    entries.insert_or_assign(std::move(*parent.key), std::move(value));
    parent.key.reset();
  }
}

}  // namespace tamo::values::open
