#include "support/layout.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "values/text.hpp"

namespace tamo::support {
namespace {

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Looks at all of it, many bytes at a time, rather than up to the first that is not.
bool isPlain(std::string_view text) {
  unsigned strange = 0;
  for (const char byte : text)
    strange |= static_cast<unsigned>(byte < ' ' || byte > '~');
  return strange == 0;
}

/// The first character of a text that is UTF-8, with its bytes.
std::pair<std::uint32_t, std::size_t> firstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  std::size_t size = 1;
  while (size < text.size() && isContinuation(text[size]))
    ++size;
  std::uint32_t code = size == 1 ? lead : lead & (0xFFU >> (size + 1));
  for (const char byte : text.substr(1, size - 1))
    code = (code << 6U) | (static_cast<unsigned char>(byte) & 0x3FU);
  return {code, size};
}

/// The control characters of ASCII and of Latin 1, and those that turn the direction of what follows. A log holds
/// whatever an action or a path was named, so one of them could wipe or rewrite what was told before it.
bool actsOnATerminal(std::uint32_t code) {
  const auto isWithin = [code](std::uint32_t first, std::uint32_t last) {
    return code >= first && code <= last;
  };
  return code < 0x20 || isWithin(0x7F, 0x9F) || isWithin(0x200E, 0x200F) || isWithin(0x202A, 0x202E) ||
         isWithin(0x2066, 0x2069);
}

std::string named(std::uint32_t code) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), code < 0x80 ? "\\x%02X" : "\\u%04X", static_cast<unsigned>(code));
  return text.data();
}

std::size_t characters(std::string_view text) {
  return text.size() - static_cast<std::size_t>(std::ranges::count_if(text, isContinuation));
}

/// The bytes of the first so many characters.
std::size_t bytesOf(std::string_view text, std::size_t count) {
  std::size_t at = 0;
  while (at < text.size() && (count > 0 || isContinuation(text[at])))
    if (!isContinuation(text[at++])) --count;
  return at;
}

/// How many characters stand beside a margin: a few at least. With no room at all a word would never get shorter by
/// being cut.
std::size_t roomBeside(std::string_view margin, std::size_t width) {
  const auto taken = characters(margin);
  return std::max(width, taken + 8) - taken;
}

/// Where every character is a byte and every blank divides two words, a line ends at the last blank that fits. Nearly
/// every text is such a one, and this is many times as fast as to go by words.
std::string plainParagraph(std::string_view rest, const Margins& margins, std::size_t width) {
  std::string text(margins.first);
  auto room = roomBeside(margins.first, width);
  while (rest.size() > room) {
    // The blank right behind the last column ends a full line as well.
    const auto blank = rest.rfind(' ', room);
    const auto size = std::min(blank, room);
    text.append(rest.substr(0, size)).append("\n").append(margins.others);
    rest.remove_prefix(blank == std::string_view::npos ? size : size + 1);
    room = roomBeside(margins.others, width);
  }
  return text.append(rest).append("\n");
}

/// Sets line after line.
class Setter {
 public:
  Setter(const Margins& margins, std::size_t width, std::size_t expected) : margins_(margins), width_(width) {
    text_.reserve(expected + expected / 2);
    begin(margins.first);
  }

  void word(std::string_view word) {
    auto size = characters(word);
    if (!empty_ && size + 1 > room_) newLine();
    if (!empty_) put(" ", 1);
    while (size > room_) {
      const auto fits = room_;
      const auto bytes = bytesOf(word, fits);
      put(word.substr(0, bytes), fits);
      word.remove_prefix(bytes);
      size -= fits;
      newLine();
    }
    put(word, size);
  }

  std::string done() {
    text_ += '\n';
    return std::move(text_);
  }

 private:
  void begin(std::string_view margin) {
    text_ += margin;
    room_ = roomBeside(margin, width_);
    empty_ = true;
  }

  void newLine() {
    text_ += '\n';
    begin(margins_.others);
  }

  void put(std::string_view text, std::size_t size) {
    text_ += text;
    room_ -= size;
    empty_ = false;
  }

  const Margins margins_;
  const std::size_t width_;
  std::string text_;
  std::size_t room_ = 0;
  bool empty_ = true;
};

}  // namespace

/// UTF-8 is repaired first: the characters are taken apart without another check, and what a terminal makes of broken
/// bytes is its own affair.
std::string visible(std::string_view text) {
  if (isPlain(text)) return std::string(text);
  const auto whole = values::repairedUtf8(text);
  std::string shown;
  for (std::string_view rest = whole; !rest.empty();) {
    const auto [code, size] = firstCharacter(rest);
    shown += actsOnATerminal(code) ? named(code) : std::string(rest.substr(0, size));
    rest.remove_prefix(size);
  }
  return shown;
}

/// Made visible before it is measured, since an escape is wider than its character. The quick way keeps every blank, so
/// it is for texts without two of them side by side.
std::string paragraph(std::string_view text, const Margins& margins, std::size_t width) {
  const auto shown = visible(text);
  const bool isSingleSpaced = !shown.contains("  ") && !shown.starts_with(' ') && !shown.ends_with(' ');
  if (isSingleSpaced && isPlain(shown)) return plainParagraph(shown, margins, width);
  Setter setter(margins, width, shown.size());
  for (std::string_view rest = shown; !rest.empty();) {
    const auto word = rest.substr(0, rest.find(' '));
    if (!word.empty()) setter.word(word);
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
  }
  return setter.done();
}

std::string verbatim(std::string_view text, const Margins& margins, std::size_t width) {
  const auto shown = visible(text);
  Setter setter(margins, width, shown.size());
  setter.word(shown);
  return setter.done();
}

}  // namespace tamo::support
