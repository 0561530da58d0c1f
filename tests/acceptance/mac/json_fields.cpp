#include "acceptance/mac/json_fields.hpp"

#include <charconv>
#include <cstdint>

namespace tamo::acceptance {
namespace {

void appendUtf8(std::string& text, std::uint32_t code) {
  const auto tail = [&](int shift) { text += static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0U | (code >> 6U));
    tail(0);
  } else if (code < 0x10000) {
    text += static_cast<char>(0xE0U | (code >> 12U));
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0U | (code >> 18U));
    tail(12);
    tail(6);
    tail(0);
  }
}

/// Reads from the front and remembers whether everything was as it should be.
class Reader {
 public:
  explicit Reader(std::string_view rest) : rest_(rest) {}
  [[nodiscard]] bool good() const { return good_; }

  bool takes(char wanted) {
    while (!rest_.empty() && std::string_view(" \t\r\n").contains(rest_.front()))
      rest_.remove_prefix(1);
    if (rest_.empty() || rest_.front() != wanted) return false;
    rest_.remove_prefix(1);
    return true;
  }

  void needs(char wanted) {
    if (!takes(wanted)) good_ = false;
  }

  /// What stands between the quotes; the first of them is taken already.
  std::string text() {
    std::string found;
    while (good_ && !rest_.empty() && rest_.front() != '"') {
      if (rest_.front() == '\\') {
        escape(found);
      } else {
        found += next();
      }
    }
    needs('"');
    return found;
  }

  /// A number or a word, as it stands.
  std::string word() {
    std::string found;
    while (!rest_.empty() && !std::string_view(",]} \t\r\n").contains(rest_.front()))
      found += next();
    good_ = good_ && !found.empty();
    return found;
  }

  /// An object or an array, without a look at what is in it; its opening bracket is taken already.
  void skip() {
    int depth = 1;
    while (good_ && depth > 0 && !rest_.empty()) {
      const char one = next();
      if (one == '"') text();
      if (one == '{' || one == '[') ++depth;
      if (one == '}' || one == ']') --depth;
    }
    good_ = good_ && depth == 0;
  }

 private:
  char next() {
    const char one = rest_.front();
    rest_.remove_prefix(1);
    return one;
  }

  std::uint32_t unit() {
    std::uint32_t value = 0;
    const auto digits = rest_.substr(0, 4);
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    good_ = good_ && digits.size() == 4 && read.ptr == digits.data() + digits.size();
    rest_.remove_prefix(digits.size());
    return value;
  }

  void escape(std::string& found) {
    static constexpr std::string_view names = "bfnrt";
    static constexpr std::string_view meant = "\b\f\n\r\t";
    rest_.remove_prefix(1);
    if (rest_.empty()) return;
    const char name = next();
    if (name != 'u') {
      const auto known = names.find(name);
      found += known == std::string_view::npos ? name : meant[known];
      return;
    }
    auto code = unit();
    if (code >= 0xD800 && code < 0xDC00 && rest_.starts_with("\\u")) {
      rest_.remove_prefix(2);
      code = 0x10000 + ((code - 0xD800) << 10U) + (unit() - 0xDC00);
    }
    appendUtf8(found, code);
  }

  std::string_view rest_;
  bool good_ = true;
};

}  // namespace

std::optional<std::map<std::string, std::string>> jsonFields(std::string_view object) {
  std::map<std::string, std::string> fields;
  Reader reader(object);
  reader.needs('{');
  if (reader.takes('}')) return fields;
  do {
    reader.needs('"');
    const auto name = reader.text();
    reader.needs(':');
    if (reader.takes('"')) {
      fields[name] = reader.text();
    } else if (reader.takes('{') || reader.takes('[')) {
      reader.skip();
    } else {
      fields[name] = reader.word();
    }
  } while (reader.good() && reader.takes(','));
  reader.needs('}');
  return reader.good() ? std::optional(fields) : std::nullopt;
}

}  // namespace tamo::acceptance
