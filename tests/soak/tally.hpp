#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tamo::soak {

/// What was really done, by name. Lanes write into one file, a line each time, so that the account of one
/// that is killed is not lost; the account is read when all have ended.
class Tally {
 public:
  /// Appends to the file.
  explicit Tally(const std::string& file);
  ~Tally();
  Tally(const Tally&) = delete;
  Tally& operator=(const Tally&) = delete;

  void count(const std::string& name, std::int64_t times = 1);
  /// Keeps the greatest value of that name.
  void greatest(const std::string& name, std::int64_t value);
  /// Something that must never happen, with what is known of it.
  void wrong(const std::string& what);

 private:
  void line(const std::string& text);

  int file_;
};

struct Account {
  std::map<std::string, std::int64_t> counts;
  std::map<std::string, std::int64_t> greatest;
  std::vector<std::string> wrongs;
};

[[nodiscard]] Account accountOf(const std::string& text);

/// Every figure, then every wrong.
[[nodiscard]] std::string shown(const Account& account);

}  // namespace tamo::soak
