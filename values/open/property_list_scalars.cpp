#include "values/open/property_list_scalars.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace tamo::values::open {
namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";
constexpr std::string_view digits = "0123456789";

bool isDigit(char character) {
  return digits.find(character) != std::string_view::npos;
}

void skipWhiteSpace(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
}

/// Takes a sign off the front; whether it was a minus.
bool takeMinus(std::string_view& text) {
  const bool minus = text.starts_with('-');
  if (minus || text.starts_with('+')) text.remove_prefix(1);
  return minus;
}

/// The library's reading takes no "0x", and, unlike that of C, no leading zero for an octal number.
std::optional<std::uint64_t> magnitude(std::string_view number) {
  int base = 10;
  if (number.starts_with("0x") || number.starts_with("0X")) {
    number.remove_prefix(2);
    base = 16;
  }
  std::uint64_t value = 0;
  const auto* end = number.data() + number.size();
  const auto [stopped, error] = std::from_chars(number.data(), end, value, base);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return value;
}

/// Negated as it is unsigned: the smallest integer has no positive counterpart.
std::optional<PropertyList> negated(std::uint64_t value) {
  constexpr std::uint64_t largest = std::uint64_t{1} << 63U;
  if (value > largest) return std::nullopt;
  return PropertyList{static_cast<std::int64_t>(0 - value)};
}

struct NamedReal {
  std::string_view name;
  double value;
};

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::array namedReals{
    NamedReal{"nan", std::numeric_limits<double>::quiet_NaN()},
    NamedReal{"inf", infinity},
    NamedReal{"+inf", infinity},
    NamedReal{"-inf", -infinity},
    NamedReal{"infinity", infinity},
    NamedReal{"+infinity", infinity},
    NamedReal{"-infinity", -infinity},
};

/// Not by the locale, which the process may have inherited from anywhere.
char asciiLower(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

bool equalsInAnyCase(std::string_view text, std::string_view name) {
  return std::equal(text.begin(), text.end(), name.begin(), name.end(),
                    [](char left, char right) { return asciiLower(left) == right; });
}

}  // namespace

/// White space at the end is not skipped: a Mac takes such a list for unreadable, as it does for any other text behind
/// the digits.
std::optional<PropertyList> integerValue(std::string_view text) {
  skipWhiteSpace(text);
  const bool minus = takeMinus(text);
  skipWhiteSpace(text);
  const auto value = magnitude(text);
  if (!value) return std::nullopt;
  if (minus) return negated(*value);
  if (*value <= std::numeric_limits<std::int64_t>::max()) {
    return PropertyList{static_cast<std::int64_t>(*value)};
  }
  return PropertyList{*value};
}

std::optional<PropertyList> realValue(const std::string& text) {
  for (const auto& named : namedReals) {
    if (equalsInAnyCase(text, named.name)) return PropertyList{named.value};
  }
  // What is left is decimal: the function below would take hexadecimal and other spellings as well.
  if (text.empty() || text.find_first_not_of("0123456789+-.eE \t\n\v\f\r") != std::string::npos) {
    return std::nullopt;
  }
  char* stopped = nullptr;
  // This goes by the locale, which is C's, because nobody sets another.
  const double value = std::strtod(text.c_str(), &stopped);
  if (stopped == text.c_str() || stopped != text.c_str() + text.size()) return std::nullopt;
  return PropertyList{value};
}

/// Only the form counts, because it decides whether the whole list can be read; the date itself is of no use here.
bool isDate(std::string_view text) {
  constexpr std::string_view behindTheYear = "-00-00T00:00:00Z";
  if (text.starts_with('-')) text.remove_prefix(1);
  text.remove_prefix(std::min(text.find_first_not_of(digits), text.size()));
  return std::equal(text.begin(), text.end(), behindTheYear.begin(), behindTheYear.end(),
                    [](char seen, char meant) { return meant == '0' ? isDigit(seen) : seen == meant; });
}

}  // namespace tamo::values::open
