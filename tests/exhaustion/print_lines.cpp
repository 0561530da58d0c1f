#include "exhaustion/print_lines.hpp"

#include <algorithm>
#include <array>
#include <string>

namespace tamo::exhaustion {
namespace {

constexpr std::array<std::string_view, 18> blanks{
    "\t",           " ",
    "\xC2\xA0",     "\xE1\x9A\x80",
    "\xE2\x80\x80", "\xE2\x80\x81",
    "\xE2\x80\x82", "\xE2\x80\x83",
    "\xE2\x80\x84", "\xE2\x80\x85",
    "\xE2\x80\x86", "\xE2\x80\x87",
    "\xE2\x80\x88", "\xE2\x80\x89",
    "\xE2\x80\x8A", "\xE2\x80\xAF",
    "\xE2\x81\x9F", "\xE3\x80\x80",
};

/// A number is compared with the limits as a text, digit by digit, before it is made one.
struct Limits {
  std::string_view most;
  std::string_view leastWithoutSign;
};

std::optional<std::int64_t> number(std::string_view text, const Limits& limits) {
  const bool minus = text.starts_with('-');
  if (minus || text.starts_with('+')) text = text.substr(1);
  if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  const auto digits = text.substr(std::min(text.find_first_not_of('0'), text.size()));
  const auto limit = minus ? limits.leastWithoutSign : limits.most;
  if (digits.size() > limit.size() || (digits.size() == limit.size() && digits > limit)) return std::nullopt;
  return std::stoll((minus ? "-0" : "0") + std::string(digits));
}

constexpr bool isVisible(char byte) {
  return byte > ' ' && byte < '\x7F';
}

}  // namespace

std::string_view describedStripped(std::string_view text) {
  // Nearly every line stands between two visible characters: there is nothing to strip, and no need to look for it.
  if (!text.empty() && isVisible(text.front()) && isVisible(text.back())) return text;
  for (auto before = text.size() + 1; before != text.size();) {
    before = text.size();
    for (const auto blank : blanks) {
      if (text.starts_with(blank)) text = text.substr(blank.size());
      if (text.ends_with(blank)) text = text.substr(0, text.size() - blank.size());
    }
  }
  return text;
}

std::optional<std::int64_t> describedInt64(std::string_view text) {
  return number(text, {.most = "9223372036854775807", .leastWithoutSign = "9223372036854775808"});
}

namespace {

constexpr std::string_view pidKey = "pid = ";
constexpr std::string_view timeoutKey = "exit timeout = ";

/// Character by character: a fuzzer records what is compared at once, and that takes longer than all the rest.
bool beginsWith(std::string_view text, std::string_view word) {
  if (text.size() < word.size()) return false;
  for (std::size_t at = 0; at < word.size(); ++at)
    if (text[at] != word[at]) return false;
  return true;
}

bool endsWith(std::string_view text, std::string_view word) {
  return text.size() >= word.size() && beginsWith(text.substr(text.size() - word.size()), word);
}

std::optional<std::int32_t> jobPid(std::string_view text) {
  const auto value = number(text, {.most = "2147483647", .leastWithoutSign = "2147483648"});
  if (!value || *value < 2) return std::nullopt;
  return static_cast<std::int32_t>(*value);
}

Line lineOf(std::string_view text) {
  Line line{.stripped = describedStripped(text)};
  line.opens = endsWith(line.stripped, "= {");
  line.closes = line.stripped == "}";
  line.opensQuoted = beginsWith(line.stripped, "\"") && endsWith(line.stripped, "\" => {");
  line.opensAnything = endsWith(line.stripped, "{");
  line.beginsArguments = line.stripped == "arguments = {";
  line.namesPid = beginsWith(line.stripped, pidKey);
  line.namesTimeout = beginsWith(line.stripped, timeoutKey);
  if (line.namesPid) line.pid = jobPid(line.stripped.substr(pidKey.size()));
  if (line.namesTimeout) line.timeout = describedInt64(line.stripped.substr(timeoutKey.size()));
  return line;
}

}  // namespace

std::vector<Line> linesOf(std::string_view text) {
  std::vector<Line> lines;
  for (std::size_t start = 0;;) {
    const auto end = text.find('\n', start);
    lines.push_back(lineOf(text.substr(start, end - start)));
    if (end == std::string_view::npos) return lines;
    start = end + 1;
  }
}

}  // namespace tamo::exhaustion
