#include "acceptance/command_line.hpp"

#include <iostream>

#include "acceptance/check.hpp"
#include "values/text.hpp"

namespace tamo::acceptance {
namespace {

class Words {
 public:
  explicit Words(const std::vector<std::string>& words) : words_(words) {}
  [[nodiscard]] bool more() const { return at_ < words_.size(); }
  const std::string& next() { return words_.at(at_++); }
  /// A number of at least one; zero for anything else.
  int number() {
    const auto value = more() ? values::decimalInt32(next()) : std::nullopt;
    return value && *value > 0 ? *value : 0;
  }
  std::string text() { return more() ? next() : std::string(); }

 private:
  const std::vector<std::string>& words_;
  std::size_t at_ = 0;
};

/// False when the word's value is missing or none.
bool take(Orders& orders, const std::string& word, Words& words) {
  if (word == "--with-me") return orders.withMe = true;
  if (word == "--canaries") return orders.canaries = true;
  if (word == "--everywhere") return orders.everywhere = true;
  if (word == "--list") return orders.list = true;
  if (word == "--report") return !(orders.report = words.text()).empty();
  if (word == "--canary") return !(orders.canary = words.text()).empty();
  if (word == "--repetitions")
    return (orders.terms.repetitions = orders.terms.underLoad = words.number()) > 0;
  if (word == "--at-once") return (orders.atOnce = static_cast<std::size_t>(words.number())) > 0;
  if (word.starts_with("-")) return false;
  orders.names.push_back(word);
  return true;
}

}  // namespace

std::expected<Orders, std::string> ordersOf(const std::vector<std::string>& words) {
  Orders orders;
  Words rest(words);
  while (rest.more()) {
    const auto word = rest.next();
    if (!take(orders, word, rest)) return std::unexpected("\"" + word + "\" is no use of this command");
  }
  return orders;
}

int playWords(int count, char** words, const std::function<int(const Orders&)>& play) {
  const auto orders = ordersOf({words + 1, words + count});
  if (!orders) {
    std::cerr << "accept: " << orders.error() << "\n";
    return 2;
  }
  if (!orders->list) return play(*orders);
  std::cout << listOfChecks();
  return 0;
}

std::string listOfChecks() {
  std::string text;
  for (const auto& theme : allThemes())
    for (const auto& check : theme.checks)
      text +=
          std::string(theme.name) + ": " + std::string(check.name) + ": " + std::string(check.sees) + "\n";
  return text;
}

}  // namespace tamo::acceptance
