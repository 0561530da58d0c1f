#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The times of log lines. Pure.
namespace tamo::support {

/// A time as a log writes it, to the microsecond.
struct Moment {
  /// Of the place's own clock, as if it were UTC; the compact form says nothing of the zone.
  std::int64_t localMicros = 0;
  /// Absent where the log doesn't tell it.
  std::optional<int> zoneMinutes{};

  /// What two moments of one log are compared by.
  [[nodiscard]] std::int64_t micros() const {
    return localMicros - std::int64_t{zoneMinutes.value_or(0)} * 60'000'000;
  }
};

/// Takes a time off the front: "2026-11-21 23:00:00.123456+0100", with a "T" instead of the blank as well, with any
/// number of digits behind the second, and with a zone, a "Z" or nothing behind them. Leaves `rest` alone and gives
/// nothing when there is none.
[[nodiscard]] std::optional<Moment> takeMoment(std::string_view& rest);

/// "2026-11-21 23:00:00.123 +0100", or without a zone where the log has none.
[[nodiscard]] std::string dayAndTime(const Moment& moment);
/// "23:00:00.123".
[[nodiscard]] std::string timeOfDay(const Moment& moment);
/// "0.3 s", "12.4 s", "3 min 5 s", "2 h 1 min": as people say how long something took. Never negative.
[[nodiscard]] std::string lasting(std::int64_t micros);

}  // namespace tamo::support
