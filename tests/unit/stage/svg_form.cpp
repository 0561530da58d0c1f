#include "svg_form.hpp"

#include <algorithm>
#include <regex>
#include <set>

namespace tamo::stage {
namespace {

/// What stands between "<" and ">", and the text up to the next "<".
struct Tag {
  std::string name;
  std::string attributes;
  std::string text;
  bool closes = false;
  bool isLeaf = false;
};

std::vector<Tag> tagsOf(std::string_view svg) {
  static const std::regex pattern(R"(<(/?)([a-z]+)((?: [a-zA-Z0-9-]+="[^"<]*")*)(/?)>([^<]*))");
  const std::string text(svg);
  std::vector<Tag> tags;
  for (auto it = std::sregex_iterator(text.begin(), text.end(), pattern); it != std::sregex_iterator(); ++it)
    tags.push_back({.name = (*it)[2],
                    .attributes = (*it)[3],
                    .text = (*it)[5],
                    .closes = (*it)[1].length() > 0,
                    .isLeaf = (*it)[4].length() > 0});
  return tags;
}

std::string attribute(const Tag& tag, const std::string& name) {
  const auto opening = " " + name + "=\"";
  const auto start = tag.attributes.find(opening);
  if (start == std::string::npos) return "";
  const auto from = start + opening.size();
  return tag.attributes.substr(from, tag.attributes.find('"', from) - from);
}

std::string withoutNumbers(const std::string& text) {
  return std::regex_replace(text, std::regex("[0-9]+"), "#");
}

std::string plain(std::string text) {
  for (const auto& [escape, character] : std::vector<std::pair<std::string, std::string>>{
           {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}})
    for (auto at = text.find(escape); at != std::string::npos; at = text.find(escape, at + 1))
      text.replace(at, escape.size(), character);
  return text;
}

std::string between(std::string_view svg, std::string_view from, std::string_view to) {
  const auto start = svg.find(from);
  const auto end = svg.find(to, start);
  return end == std::string_view::npos ? "" : std::string(svg.substr(start, end - start));
}

/// The groups of a document, one after the other: what each is and what it holds.
class Groups {
 public:
  std::vector<std::string> lines;

  void take(const Tag& tag) {
    if (tag.name == "g" && !tag.closes) open_.push_back(attribute(tag, "class"));
    if (tag.name == "g" && tag.closes) close();
    const bool isName = tag.name == "text" && attribute(tag, "class") == "name";
    if (isName && !open_.empty() && open_.back().starts_with("row")) name_ = withoutNumbers(tag.text);
  }

 private:
  void close() {
    const auto closed = open_.back();
    open_.pop_back();
    if (closed.starts_with("row")) {
      std::string line = closed + " \"" + name_ + "\":";
      for (const auto& kind : within_)
        line += " " + kind;
      lines.push_back(line);
      within_.clear();
    } else if (!open_.empty()) {
      within_.insert(closed);
    } else if (closed.starts_with("arrow")) {
      lines.push_back(closed);
    } else if (closed == "legend") {
      std::string line = "legend:";
      for (const auto& kind : within_)
        line += " " + kind;
      lines.push_back(line);
      within_.clear();
    }
  }

  std::vector<std::string> open_;
  std::set<std::string> within_;
  std::string name_;
};

}  // namespace

std::string wrongInXml(std::string_view text) {
  std::size_t seen = 0;
  std::vector<std::string> open;
  for (const auto& tag : tagsOf(text)) {
    seen +=
        tag.name.size() + tag.attributes.size() + tag.text.size() + 2 + (tag.closes || tag.isLeaf ? 1U : 0U);
    static const std::regex loose("&(?!amp;|lt;|gt;|quot;)");
    if (std::regex_search(tag.text + tag.attributes, loose)) return "an & that is no escape near " + tag.text;
    if (tag.closes) {
      if (open.empty() || open.back() != tag.name) return "a </" + tag.name + "> that closes nothing";
      open.pop_back();
    } else if (!tag.isLeaf) {
      open.push_back(tag.name);
    }
    if (open.empty() && seen != text.size()) return "something behind the end";
  }
  if (!open.empty()) return "<" + open.back() + "> is not closed";
  return seen == text.size() && seen > 0 ? "" : "something is no element";
}

std::vector<std::string> formOf(std::string_view svg) {
  Groups groups;
  std::string size;
  for (const auto& tag : tagsOf(svg)) {
    if (tag.name == "svg" && !tag.closes) size = "width " + attribute(tag, "width");
    groups.take(tag);
  }
  auto form = std::move(groups.lines);
  form.insert(form.begin(), {size, between(svg, "<style>", "</style>"), between(svg, "<defs>", "</defs>")});
  return form;
}

std::vector<std::string> textsOfClass(std::string_view svg, std::string_view wanted) {
  std::vector<std::string> texts;
  for (const auto& tag : tagsOf(svg))
    if (!tag.closes && attribute(tag, "class") == wanted) texts.push_back(plain(tag.text));
  return texts;
}

}  // namespace tamo::stage
