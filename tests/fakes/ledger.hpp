#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace tamo::fakes {

/// What the fakes of one test were asked, in order, by all of them together. An entry is "subject: deed",
/// with the virtual time at which it happened.
class Ledger {
 public:
  struct Entry {
    std::chrono::nanoseconds at;
    std::string text;
  };

  void note(std::chrono::nanoseconds at, std::string text) { entries_.push_back({at, std::move(text)}); }

  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }

  /// Every text in order.
  [[nodiscard]] std::vector<std::string> texts() const { return textsOf({""}); }

  /// The texts that begin with one of the prefixes, in order.
  [[nodiscard]] std::vector<std::string> textsOf(const std::vector<std::string_view>& prefixes) const {
    std::vector<std::string> result;
    for (const auto& entry : entries_) {
      const auto begins = [&entry](std::string_view prefix) { return entry.text.starts_with(prefix); };
      if (std::any_of(prefixes.begin(), prefixes.end(), begins)) result.push_back(entry.text);
    }
    return result;
  }

  [[nodiscard]] std::size_t count(std::string_view prefix) const { return textsOf({prefix}).size(); }

  void clear() { entries_.clear(); }

 private:
  std::vector<Entry> entries_;
};

}  // namespace tamo::fakes
