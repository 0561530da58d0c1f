#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// SVG as text: elements that are closed and texts that are escaped, so that what comes out is well-formed whatever goes
/// in. Pure.
namespace tamo::stage {

/// A text between tags or in an attribute. What XML has no place for becomes a blank; `text` is UTF-8.
[[nodiscard]] std::string xmlText(std::string_view text);

/// A coordinate, with one place behind the point.
[[nodiscard]] std::string coordinate(double value);

using Attributes = std::vector<std::pair<std::string_view, std::string>>;

class SvgText {
 public:
  /// An element without anything in it.
  void leaf(std::string_view name, const Attributes& attributes);
  /// An element with a text in it.
  void text(std::string_view name, const Attributes& attributes, std::string_view content);
  /// What comes until close() is in it. `name` must last until then.
  void open(std::string_view name, const Attributes& attributes);
  void close();
  /// Text that is XML already: a style sheet without "<" and "&".
  void raw(std::string_view xml) { text_ += xml; }

  /// All of it; every element must have been closed.
  [[nodiscard]] const std::string& str() const { return text_; }

 private:
  void begin(std::string_view name, const Attributes& attributes);

  std::string text_;
  std::vector<std::string_view> open_;
};

}  // namespace tamo::stage
