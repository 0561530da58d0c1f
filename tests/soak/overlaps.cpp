#include "soak/overlaps.hpp"

#include <sstream>

namespace tamo::soak {

CrowdAccount crowdAccount(const std::string& notes, const std::map<int, std::int64_t>& killed) {
  struct Span {
    int first = 0;
    int last = 0;
  };
  std::map<int, Span> spans;
  CrowdAccount account;
  std::istringstream lines(notes);
  int number = 0;
  for (std::string line; std::getline(lines, line); ++number) {
    std::istringstream words(line);
    std::string what;
    int companion = 0;
    std::int64_t time = 0;
    if (!(words >> what >> companion >> time) || (what != "begin" && what != "end")) {
      ++account.overlaps;
      continue;
    }
    if (const auto death = killed.find(companion); death != killed.end() && time > death->second) continue;
    const auto [found, isNew] = spans.try_emplace(companion, Span{number, number});
    found->second.last = number;
  }
  account.worked = static_cast<int>(spans.size());
  for (auto one = spans.begin(); one != spans.end(); ++one)
    for (auto other = std::next(one); other != spans.end(); ++other)
      if (one->second.first <= other->second.last && other->second.first <= one->second.last)
        ++account.overlaps;
  return account;
}

}  // namespace tamo::soak
