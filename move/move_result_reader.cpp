#include "move/move_result_reader.hpp"

#include <nlohmann/json.hpp>

namespace tamo::AppMove {

std::expected<Result, DecodingError> decoded(std::string_view bytes) {
  using nlohmann::json;
  constexpr bool throwing = false;
  const auto object = json::parse(bytes.begin(), bytes.end(), nullptr, throwing);
  if (!object.is_object()) return std::unexpected(DecodingError::notAnObject);

  const auto ok = object.find("ok");
  const auto code = object.find("code");
  if (ok == object.end() || code == object.end()) return std::unexpected(DecodingError::memberMissing);
  if (!ok->is_boolean() || !code->is_string()) return std::unexpected(DecodingError::memberOfAnotherType);
  return Result{.ok = ok->get<bool>(), .code = code->get<std::string>()};
}

}  // namespace tamo::AppMove
