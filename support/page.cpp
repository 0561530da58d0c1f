#include "support/page.hpp"

#include <algorithm>

#include "support/layout.hpp"
#include "values/text.hpp"

namespace tamo::support {
namespace {

/// "[text](target)" is text; the target is of no use here.
std::string withoutTargets(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    const auto open = text.find("](");
    const auto close = open == std::string_view::npos ? open : text.find(')', open);
    plain += text.substr(0, close == std::string_view::npos ? close : open + 1);
    text.remove_prefix(close == std::string_view::npos ? text.size() : close + 1);
  }
  return plain;
}

/// A terminal, or a file, shows no bold letters, and the stars would stand in the way.
std::string withoutEmphasis(std::string text) {
  for (auto at = text.find("**"); at != std::string::npos; at = text.find("**", at))
    text.erase(at, 2);
  return text;
}

/// "| a | b |" as "a: b". Empty for the lines that only draw the table.
std::string row(std::string_view line) {
  std::string text;
  line.remove_prefix(1);
  for (std::optional<std::string_view> rest = line; rest && rest->contains('|');) {
    const auto cell = values::trimmed(rest->substr(0, rest->find('|')));
    rest->remove_prefix(rest->find('|') + 1);
    if (cell.empty() || cell.find_first_not_of('-') == std::string_view::npos) continue;
    text.append(text.empty() ? "" : ": ").append(cell);
  }
  return text;
}

/// Goes through the lines, and sets a paragraph when it is whole.
class Setting {
 public:
  Setting(std::string_view margin, std::size_t width) : margin_(margin), width_(width) {}

  /// What stands in a fence is a command, even where it looks like an item or a row, so the fence is asked first.
  void line(std::string_view line) {
    if (line.starts_with("```")) {
      flush();
      fenced_ = !fenced_;
    } else if (fenced_) {
      const auto margin = margin_ + "    ";
      text_ += verbatim(line, {.first = margin, .others = margin}, width_);
    } else if (line.starts_with('|')) {
      flush();
      item(row(line));
      flush();
    } else if (line.starts_with("- ")) {
      flush();
      item(line.substr(2));
    } else if (line.empty()) {
      flush();
      blank_ = true;
    } else {
      gather(line);
    }
  }

  std::string done() {
    flush();
    return std::move(text_);
  }

 private:
  /// The line that only draws a table is empty by now, and must not give its mark to the paragraph that follows.
  void item(std::string_view text) {
    if (!text.empty()) isItem_ = true;
    gather(text);
  }

  /// Indented lines go on with an item.
  void gather(std::string_view line) {
    const auto text = values::trimmed(line);
    if (text.empty()) return;
    paragraph_.append(paragraph_.empty() ? "" : " ").append(text);
  }

  void flush() {
    if (paragraph_.empty()) return;
    if (blank_ && !text_.empty()) text_ += margin_.substr(0, margin_.find_last_not_of(' ') + 1) + "\n";
    const auto first = margin_ + (isItem_ ? "- " : "");
    const auto others = margin_ + (isItem_ ? "  " : "");
    text_ +=
        paragraph(withoutEmphasis(withoutTargets(paragraph_)), {.first = first, .others = others}, width_);
    paragraph_.clear();
    isItem_ = false;
    blank_ = false;
  }

  const std::string margin_;
  const std::size_t width_;
  std::string text_;
  std::string paragraph_;
  bool isItem_ = false;
  bool fenced_ = false;
  bool blank_ = false;
};

}  // namespace

/// A heading counts as a whole line only, because one can begin like another.
std::optional<std::string_view> section(std::string_view page, std::string_view name) {
  const auto heading = "\n## " + std::string(name) + "\n";
  const auto at = page.find(heading);
  if (at == std::string_view::npos) return std::nullopt;
  const auto text = page.substr(at + heading.size());
  return values::trimmed(text.substr(0, text.find("\n## ")), '\n');
}

std::string typeset(std::string_view markdown, std::string_view margin, std::size_t width) {
  Setting setting{margin, width};
  for (std::optional<std::string_view> rest = markdown; rest;)
    setting.line(values::takeLine(rest));
  return setting.done();
}

}  // namespace tamo::support
