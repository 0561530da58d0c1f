#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "support/actions.hpp"
#include "support/story.hpp"

namespace tamo::support {

/// Puts actions and what stands between them into text for a person to read. One thread.
class Printer {
 public:
  using Out = std::function<void(std::string_view text)>;

  /// `width` in characters. `out` takes the text piece by piece, from within the operations.
  Printer(std::size_t width, Out out) : width_(width), out_(std::move(out)) {}

  void print(const Item& item);
  /// One paragraph without a margin.
  void remark(std::string_view text);

  /// The actions so far.
  [[nodiscard]] std::uint64_t actions() const { return actions_; }

 private:
  void action(const Action& action);
  void aside(const Aside& aside);
  void heading(const Action& action, const Story& story);
  void steps(const Story& story);
  void labelled(const std::string& label, const std::vector<std::string>& texts);
  void page(const std::vector<std::string>& headings);

  [[nodiscard]] const std::string& body(const std::string& text, std::size_t first, std::size_t others);

  const std::size_t width_;
  const Out out_;
  /// How the bodies of each pair of margins were set that came last: a long log says the same again and again.
  std::map<std::pair<std::size_t, std::size_t>, std::unordered_map<std::string, std::string>> bodies_;
  std::uint64_t actions_ = 0;
  /// The paragraphs of the page that were shown: once is enough.
  std::set<std::string, std::less<>> shown_;
};

}  // namespace tamo::support
