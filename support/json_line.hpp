#pragma once

#include <optional>
#include <string>
#include <string_view>

/// What an object on one line of `log show --style ndjson` says, as far as it is of use here. Pure.
namespace tamo::support {

struct LogObject {
  std::string timestamp{};
  std::string process{};
  std::string subsystem{};
  std::string type{};
  std::string event{};
  /// What the message was made of: its placeholders say which arguments are public.
  std::string format{};
  /// Absent when the object has none, as the count at the end of an export.
  std::optional<std::string> message{};
};

/// Members of other names are left out, whatever they hold; of two with one name the last counts. Absent for what is
/// no object, or not whole.
[[nodiscard]] std::optional<LogObject> logObject(std::string_view line);

}  // namespace tamo::support
