#include "stage/picture/svg_text.hpp"

#include <array>
#include <cstdio>

namespace tamo::stage {
namespace {

/// The two characters of UTF-8 that are well-formed and that XML refuses all the same.
constexpr std::string_view noCharacters[] = {"\xEF\xBF\xBE", "\xEF\xBF\xBF"};

/// Quotes as well: the same texts stand in attributes.
std::string_view escapeOf(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    default:
      return {};
  }
}

}  // namespace

/// XML has no form for most of the control characters, not even a reference, and one of them would make the whole
/// document unreadable.
std::string xmlText(std::string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto rest = text.substr(at);
    const bool isControl = static_cast<unsigned char>(text[at]) < 0x20 || text[at] == 0x7F;
    if (rest.starts_with(noCharacters[0]) || rest.starts_with(noCharacters[1])) {
      result += ' ';
      at += 2;
    } else if (const auto escape = escapeOf(text[at]); !escape.empty()) {
      result += escape;
    } else {
      result += isControl ? ' ' : text[at];
    }
  }
  return result;
}

/// A tenth of a unit is finer than anybody sees, and keeps the document short.
std::string coordinate(double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f", value);
  return text.data();
}

void SvgText::leaf(std::string_view name, const Attributes& attributes) {
  begin(name, attributes);
  text_ += "/>\n";
}

void SvgText::text(std::string_view name, const Attributes& attributes, std::string_view content) {
  begin(name, attributes);
  text_.append(">").append(xmlText(content)).append("</").append(name).append(">\n");
}

void SvgText::open(std::string_view name, const Attributes& attributes) {
  begin(name, attributes);
  text_ += ">\n";
  open_.push_back(name);
}

/// The names are kept from their opening on, so that no element is closed by another's name.
void SvgText::close() {
  text_.append("</").append(open_.back()).append(">\n");
  open_.pop_back();
}

void SvgText::begin(std::string_view name, const Attributes& attributes) {
  text_.append("<").append(name);
  for (const auto& [key, value] : attributes)
    text_.append(" ").append(key).append("=\"").append(xmlText(value)).append("\"");
}

}  // namespace tamo::stage
