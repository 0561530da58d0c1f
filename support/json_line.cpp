#include "support/json_line.hpp"

#include <charconv>
#include <cstddef>
#include <cstdint>

namespace tamo::support {
namespace {

constexpr std::string_view blanks = " \t\r";

void appendUtf8(std::string& text, std::uint32_t code) {
  const auto append = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
  const auto tail = [&](unsigned shift) { append(0x80U | ((code >> shift) & 0x3FU)); };
  if (code < 0x80) return append(code);
  if (code < 0x800) {
    append(0xC0U | (code >> 6U));
  } else if (code < 0x10000) {
    append(0xE0U | (code >> 12U));
    tail(6);
  } else {
    append(0xF0U | (code >> 18U));
    tail(12);
    tail(6);
  }
  tail(0);
}

bool isHighHalf(std::uint32_t code) {
  return code >= 0xD800 && code < 0xDC00;
}

bool isLowHalf(std::uint32_t code) {
  return code >= 0xDC00 && code < 0xE000;
}

/// Reads from the front. What is not as it should be makes it bad for good, and a bad reader has nothing left. It goes
/// over the line once and copies nothing: an object has many more members than the seven that are asked for, so a value
/// is decoded only when its name is known.
class Reader {
 public:
  explicit Reader(std::string_view rest) : rest_(rest) {}

  [[nodiscard]] bool good() const { return good_; }
  [[nodiscard]] bool atEnd() {
    skipBlanks();
    return rest_.empty();
  }

  bool takes(char wanted) {
    skipBlanks();
    if (!rest_.starts_with(wanted)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  void needs(char wanted) {
    if (!takes(wanted)) fail();
  }

  /// A text with its quotes, as it stands. A backslash takes the next byte with it, which is how an escaped quote ends
  /// nothing; where a line is cut behind one, the text has no end.
  std::string_view quoted() {
    needs('"');
    const auto all = rest_;
    std::size_t size = 0;
    while (size < all.size() && all[size] != '"')
      size += all[size] == '\\' ? 2U : 1U;
    if (size >= all.size()) return fail();
    rest_.remove_prefix(size + 1);
    return all.substr(0, size);
  }

  /// A number, a word, or an object or array without a look at what it is; as it stands. One kind of bracket may close
  /// the other: whether a value that nobody asks for is well formed doesn't matter, as long as its end is found.
  std::string_view plain() {
    skipBlanks();
    const auto all = rest_;
    std::size_t depth = 0;
    while (!rest_.empty()) {
      const char one = rest_.front();
      if (depth == 0 && std::string_view(",}] \t\r").contains(one)) break;
      // A bracket within a text closes nothing.
      if (one == '"') {
        quoted();
        continue;
      }
      if (one == '{' || one == '[') ++depth;
      if (one == '}' || one == ']') --depth;
      rest_.remove_prefix(1);
    }
    const auto value = all.substr(0, all.size() - rest_.size());
    return value.empty() || depth != 0 ? fail() : value;
  }

  [[nodiscard]] bool isText() {
    skipBlanks();
    return rest_.starts_with('"');
  }

 private:
  void skipBlanks() {
    while (!rest_.empty() && blanks.contains(rest_.front()))
      rest_.remove_prefix(1);
  }

  std::string_view fail() {
    good_ = false;
    rest_ = {};
    return {};
  }

  std::string_view rest_;
  bool good_ = true;
};

/// The four digits behind "\u"; absent for anything else.
std::optional<std::uint32_t> unit(std::string_view text) {
  std::uint32_t code = 0;
  if (text.size() < 6 || !text.starts_with("\\u")) return std::nullopt;
  const auto read = std::from_chars(text.data() + 2, text.data() + 6, code, 16);
  return read.ptr == text.data() + 6 ? std::optional(code) : std::nullopt;
}

/// Takes one escape off the front. What is no escape stands for itself; half of a pair is nobody's character.
void unescape(std::string_view& rest, std::string& text) {
  static constexpr std::string_view names = "bfnrt";
  static constexpr std::string_view meant = "\b\f\n\r\t";
  const auto first = unit(rest);
  if (!first) {
    const auto known = names.find(rest[1]);
    text += known == std::string_view::npos ? rest[1] : meant[known];
    return rest.remove_prefix(2);
  }
  rest.remove_prefix(6);
  const auto second = isHighHalf(*first) ? unit(rest) : std::nullopt;
  if (second && isLowHalf(*second)) {
    rest.remove_prefix(6);
    return appendUtf8(text, 0x10000 + ((*first - 0xD800) << 10U) + (*second - 0xDC00));
  }
  appendUtf8(text, isHighHalf(*first) || isLowHalf(*first) ? 0xFFFD : *first);
}

/// What a text between quotes says. A backslash is never its last character.
std::string unescaped(std::string_view rest) {
  std::string text;
  while (!rest.empty()) {
    const auto plain = rest.substr(0, rest.find('\\'));
    text += plain;
    rest.remove_prefix(plain.size());
    if (!rest.empty()) unescape(rest, text);
  }
  return text;
}

/// Where the value of a member belongs; nowhere when nobody asks for it.
std::string* placeOf(LogObject& object, std::string_view name) {
  if (name == "timestamp") return &object.timestamp;
  if (name == "processID") return &object.process;
  if (name == "subsystem") return &object.subsystem;
  if (name == "messageType") return &object.type;
  if (name == "eventType") return &object.event;
  if (name == "formatString") return &object.format;
  return name == "eventMessage" ? &object.message.emplace() : nullptr;
}

void member(Reader& reader, LogObject& object) {
  const auto name = reader.quoted();
  reader.needs(':');
  const bool isText = reader.isText();
  const auto value = isText ? reader.quoted() : reader.plain();
  auto* place = reader.good() ? placeOf(object, name) : nullptr;
  if (place != nullptr) *place = isText ? unescaped(value) : std::string(value);
}

}  // namespace

std::optional<LogObject> logObject(std::string_view line) {
  LogObject object;
  Reader reader(line);
  reader.needs('{');
  if (!reader.takes('}')) {
    do
      member(reader, object);
    while (reader.good() && reader.takes(','));
    reader.needs('}');
  }
  // An export to a single array has commas and brackets between its objects; a line of objects has nothing.
  return reader.good() && reader.atEnd() ? std::optional(object) : std::nullopt;
}

}  // namespace tamo::support
