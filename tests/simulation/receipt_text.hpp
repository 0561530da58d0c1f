#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tamo::simulation {

/// The members of a receipt; texts without their quotes and escapes.
using ReceiptMembers = std::map<std::string, std::string, std::less<>>;

/// Reads the bytes of a receipt by their form: one member a line, keys in order, two blanks before each.
/// Absent for any other form. Knows the escapes of the quote, the backslash and the slash.
[[nodiscard]] std::optional<ReceiptMembers> receiptMembers(std::string_view bytes);

}  // namespace tamo::simulation
