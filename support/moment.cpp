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

/// What is no day of the calendar is refused before it is converted, which would make a day of March of 30 February in
/// silence.
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

/// Digits beyond the sixth are dropped. By weight and not as one number, because the forms have three digits or six;
/// and as the weight of a seventh is 0, no row of digits is too long.
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

/// What only looks like a zone stays in front of the rest. The line is in no form then, and is shown as it is instead
/// of being told at a wrong hour.
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

/// The C library's, because the C++ library that Linux builds with has no format. The buffer has room for any day and
/// any zone.
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

/// Times are the most that is printed, and this is many times as fast as a format.
std::string timeOfDay(const Moment& moment) {
  constexpr std::int64_t day = 86'400'000;
  auto rest = moment.localMicros / 1000 % day;
  // A moment before 1970 has a remainder below zero, and a time of the day like any other.
  if (rest < 0) rest += day;
  std::string text = "00:00:00.000";
  const auto put = [&](std::size_t first, std::size_t digits, std::int64_t among) {
    auto value = rest % among;
    rest /= among;
    for (auto at = first + digits; at > first; value /= 10)
      text[--at] = static_cast<char>('0' + value % 10);
  };
  put(9, 3, 1000);
  put(6, 2, 60);
  put(3, 2, 60);
  put(0, 2, 24);
  return text;
}

namespace {

/// " +0100", " UTC", or nothing where the zone is not known.
std::string zoneName(const Moment& moment) {
  if (!moment.zoneMinutes) return "";
  const int minutes = std::abs(*moment.zoneMinutes);
  if (minutes == 0) return " UTC";
  return printed(" %c%02d%02d", *moment.zoneMinutes < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

}  // namespace

std::string dayAndTime(const Moment& moment) {
  const year_month_day date(floor<days>(sys_time<microseconds>(microseconds(moment.localMicros))));
  return printed("%04d-%02u-%02u ", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                 static_cast<unsigned>(date.day())) +
         timeOfDay(moment) + zoneName(moment);
}

std::string lasting(std::int64_t micros) {
  const auto tenths = std::abs(micros) / 100'000;
  const auto total = static_cast<long long>(tenths / 10);
  if (total < 60) return std::to_string(total) + "." + std::to_string(tenths % 10) + " s";
  if (total < 3600) return printed("%lld min %lld s", total / 60, total % 60);
  return printed("%lld h %lld min", total / 3600, total % 3600 / 60);
}

}  // namespace tamo::support
