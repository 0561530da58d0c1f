#pragma once

#include <expected>
#include <string_view>

#include "move/app_move.hpp"

/// Reads what the move records. The companion itself only writes results, so this is a library apart: only
/// who reads results needs a JSON reader.
namespace tamo::AppMove {

enum class DecodingError {
  /// Not one JSON object in UTF-8.
  notAnObject,
  /// "ok" or "code" is not there.
  memberMissing,
  /// "ok" is not true or false, or "code" is not a string.
  memberOfAnotherType,
};

/// A recorded result. Order and blanks do not matter, other members are ignored, and of two members with one
/// name the last counts. Any thread.
[[nodiscard]] std::expected<Result, DecodingError> decoded(std::string_view bytes);

}  // namespace tamo::AppMove
