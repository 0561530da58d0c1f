#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "platform/error.hpp"
#include "platform/log.hpp"

namespace tamo {

/// What became of one action, under the keys "ok", "operation", "status", "kickstart", "reseated",
/// "needsApproval", "hardStop", "domain", "code" and "description". The outcome line and the receipt are made
/// of it. The keys are in byte order, which is the order of the receipt.
using OutcomeValue = std::variant<bool, std::int64_t, std::string>;
using OutcomeRecord = std::map<std::string, OutcomeValue, std::less<>>;

/// The whole record of an action that ended in an error. It replaces what the action had stored before: a
/// "kickstart" or "reseated" that led to nothing is not reported.
[[nodiscard]] OutcomeRecord failureRecord(const platform::Error& error);

/// The outcome line of a record, with the service status as read for the line itself.
[[nodiscard]] platform::LogLine outcomeLine(const std::string& action, std::int64_t status,
                                            const OutcomeRecord& record);

}  // namespace tamo
