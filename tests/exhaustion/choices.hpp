#pragma once

#include <cstddef>
#include <vector>

namespace tamo::exhaustion {

/// Walks every sequence of answers to questions that are asked one after the other, where it may depend on the
/// answers so far which question comes next and how many answers it has. A walk is played once for each
/// sequence:
///
///   do { … choices.choose(n) … } while (choices.next());
///
/// Only what is really asked branches. One thread.
class Choices {
 public:
  /// The answer to the next question, one of 0 to options - 1. `options` is at least 1.
  [[nodiscard]] std::size_t choose(std::size_t options) {
    if (at_ == taken_.size()) taken_.push_back({.answer = 0, .options = options});
    return taken_[at_++].answer;
  }

  /// Plays the same sequence once more.
  void rewind() { at_ = 0; }

  /// Whether the play has asked for everything that an earlier play of the same sequence had asked for.
  [[nodiscard]] bool used() const { return at_ == taken_.size(); }

  /// Goes on to the next sequence, and to its beginning. False after the last one.
  [[nodiscard]] bool next() {
    rewind();
    while (!taken_.empty() && taken_.back().answer + 1 == taken_.back().options)
      taken_.pop_back();
    if (taken_.empty()) return false;
    ++taken_.back().answer;
    return true;
  }

 private:
  struct Choice {
    std::size_t answer;
    std::size_t options;
  };
  std::vector<Choice> taken_;
  std::size_t at_ = 0;
};

}  // namespace tamo::exhaustion
