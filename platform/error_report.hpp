#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/error.hpp"

namespace tamo::platform {

/// What the system tells of a failure, as plain values. A text is absent where the system gave none.
struct ErrorReport {
  std::optional<std::string> domain;
  std::int64_t code = 0;
  std::optional<std::string> description;
};

/// The Error for an operation that has failed. Absent when it failed without saying why, which the system's
/// interfaces leave open: it becomes a placeholder of the domain "TamoPlatform", because a failure must never
/// pass for a success. A report without a domain gets that domain, one without a description a sentence that
/// says so; everything else is kept as it is. Pure.
[[nodiscard]] Error errorOf(const std::optional<ErrorReport>& report);

}  // namespace tamo::platform
