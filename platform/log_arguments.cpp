#include "platform/log_arguments.hpp"

#include <cstdint>
#include <limits>
#include <string>
#include <variant>

namespace tamo::platform {
namespace {

template <class Kind>
const Kind& kindAt(const LogLine& line, std::size_t at) {
  const auto* found = at < line.arguments.size() ? std::get_if<Kind>(&line.arguments[at]) : nullptr;
  if (found == nullptr) values::fatal("a log argument does not fit its format");
  return *found;
}

template <class Integer>
Integer integerAt(const LogLine& line, std::size_t at) {
  using Limits = std::numeric_limits<Integer>;
  const auto value = kindAt<std::int64_t>(line, at);
  if (value < Limits::min() || value > Limits::max())
    values::fatal("a log argument does not fit its placeholder");
  return static_cast<Integer>(value);
}

}  // namespace

/// What the system's logging takes, which are the types of C. Each is looked at, because nobody else would
/// notice a wrong one: the format is a literal, but the line is put together elsewhere.
const char* logText(const LogLine& line, std::size_t at) {
  return kindAt<std::string>(line, at).c_str();
}

int logInt(const LogLine& line, std::size_t at) {
  return integerAt<int>(line, at);
}

long logLong(const LogLine& line, std::size_t at) {
  return integerAt<long>(line, at);
}

/// A truth value travels as an int, as everything small does through the arguments of C.
int logTruth(const LogLine& line, std::size_t at) {
  return kindAt<bool>(line, at) ? 1 : 0;
}

}  // namespace tamo::platform
