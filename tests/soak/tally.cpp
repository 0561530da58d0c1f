#include "soak/tally.hpp"

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <sstream>
#include <unistd.h>

#include "platform/posix/byte_stream.hpp"
#include "values/fatal.hpp"

namespace tamo::soak {

Tally::Tally(const std::string& file)
    : file_(::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {
  if (file_ < 0) values::fatal("there is no file for the account");
}

Tally::~Tally() {
  ::close(file_);
}

void Tally::count(const std::string& name, std::int64_t times) {
  line("count\t" + name + "\t" + std::to_string(times));
}

void Tally::greatest(const std::string& name, std::int64_t value) {
  line("greatest\t" + name + "\t" + std::to_string(value));
}

void Tally::wrong(const std::string& what) {
  auto text = what;
  std::ranges::replace(text, '\n', ' ');
  std::ranges::replace(text, '\t', ' ');
  line("wrong\t" + text + "\t1");
}

void Tally::line(const std::string& text) {
  if (!platform::writeAll(file_, text + "\n")) values::fatal("the account cannot be written");
}

Account accountOf(const std::string& text) {
  Account account;
  std::istringstream lines(text);
  for (std::string kind, name, value; std::getline(lines, kind, '\t');) {
    if (!std::getline(lines, name, '\t') || !std::getline(lines, value)) break;
    if (kind == "wrong") {
      account.wrongs.push_back(name);
    } else if (kind == "count") {
      account.counts[name] += std::stoll(value);
    } else {
      auto& kept = account.greatest[name];
      kept = std::max<std::int64_t>(kept, std::stoll(value));
    }
  }
  return account;
}

std::string shown(const Account& account) {
  std::ostringstream text;
  for (const auto* figures : {&account.counts, &account.greatest})
    for (const auto& [name, value] : *figures) {
      text.width(10);
      text << value << "  " << name << "\n";
    }
  for (const auto& what : account.wrongs)
    text << "WRONG: " << what << "\n";
  text << account.wrongs.size() << " wrong\n";
  return text.str();
}

}  // namespace tamo::soak
