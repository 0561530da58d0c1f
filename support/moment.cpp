#include "support/moment.hpp"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace tamo::support {
namespace {

using namespace std::chrono;

/// So many digits as a number; absent when there are fewer.
std::optional<int> takeNumber(std::string_view& rest, std::size_t digits) {
  if (rest.size() < digits) return std::nullopt;
  int value = 0;
  for (const char digit : rest.substr(0, digits)) {
    if (digit < '0' || digit > '9') return std::nullopt;
    value = value * 10 + (digit - '0');
  }
  rest.remove_prefix(digits);
  return value;
}

bool takeOne(std::string_view& rest, std::string_view of) {
  if (rest.empty() || !of.contains(rest.front())) return false;
  rest.remove_prefix(1);
  return true;
}

std::optional<sys_days> takeDate(std::string_view& rest) {
  const auto y = takeNumber(rest, 4);
  if (!y || !takeOne(rest, "-")) return std::nullopt;
  const auto m = takeNumber(rest, 2);
  if (!m || !takeOne(rest, "-")) return std::nullopt;
  const auto d = takeNumber(rest, 2);
  if (!d) return std::nullopt;
  const year_month_day date{year(*y), month(static_cast<unsigned>(*m)), day(static_cast<unsigned>(*d))};
  return date.ok() ? std::optional(sys_days(date)) : std::nullopt;
}

/// A leap second is a 60th.
std::optional<seconds> takeClock(std::string_view& rest) {
  const auto h = takeNumber(rest, 2);
  if (!h || *h > 23 || !takeOne(rest, ":")) return std::nullopt;
  const auto m = takeNumber(rest, 2);
  if (!m || *m > 59 || !takeOne(rest, ":")) return std::nullopt;
  const auto s = takeNumber(rest, 2);
  if (!s || *s > 60) return std::nullopt;
  return hours(*h) + minutes(*m) + seconds(*s);
}

/// Digits beyond the sixth are dropped.
microseconds takeFraction(std::string_view& rest) {
  if (!takeOne(rest, ".")) return {};
  int value = 0;
  int weight = 100'000;
  while (const auto digit = takeNumber(rest, 1)) {
    value += *digit * weight;
    weight /= 10;
  }
  return microseconds(value);
}

std::optional<int> takeZone(std::string_view& rest) {
  if (takeOne(rest, "Z")) return 0;
  auto tried = rest;
  const bool west = tried.starts_with('-');
  if (!takeOne(tried, "+-")) return std::nullopt;
  const auto digits = takeNumber(tried, 4);
  if (!digits || *digits % 100 > 59) return std::nullopt;
  rest = tried;
  return (*digits / 100 * 60 + *digits % 100) * (west ? -1 : 1);
}

template <class... Parts>
std::string printed(const char* format, Parts... parts) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format, parts...);
  return text.data();
}

}  // namespace

std::optional<Moment> takeMoment(std::string_view& rest) {
  auto tried = rest;
  const auto date = takeDate(tried);
  if (!date || !takeOne(tried, " T")) return std::nullopt;
  const auto clock = takeClock(tried);
  if (!clock) return std::nullopt;
  const auto time = date->time_since_epoch() + *clock + takeFraction(tried);
  const auto zone = takeZone(tried);
  rest = tried;
  return Moment{.localMicros = duration_cast<microseconds>(time).count(), .zoneMinutes = zone};
}

std::string timeOfDay(const Moment& moment) {
  const sys_time<microseconds> time(microseconds(moment.localMicros));
  const hh_mm_ss clock(floor<milliseconds>(time - floor<days>(time)));
  return printed("%02d:%02d:%02d.%03d", static_cast<int>(clock.hours().count()),
                 static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                 static_cast<int>(clock.subseconds().count()));
}

std::string dayAndTime(const Moment& moment) {
  const year_month_day date(floor<days>(sys_time<microseconds>(microseconds(moment.localMicros))));
  return printed("%04d-%02u-%02u ", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                 static_cast<unsigned>(date.day())) +
         timeOfDay(moment);
}

std::string lasting(std::int64_t micros) {
  const auto tenths = std::abs(micros) / 100'000;
  const auto total = static_cast<long long>(tenths / 10);
  if (total < 60) return printed("%lld.%d s", total, static_cast<int>(tenths % 10));
  if (total < 3600) return printed("%lld min %lld s", total / 60, total % 60);
  return printed("%lld h %lld min", total / 3600, total % 3600 / 60);
}

}  // namespace tamo::support
