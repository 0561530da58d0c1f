#pragma once

#include <string_view>

namespace tamo::stage {

/// The style sheet of every picture, and the patterns and heads that it draws with.
[[nodiscard]] std::string_view svgStyle();
[[nodiscard]] std::string_view svgDefinitions();

}  // namespace tamo::stage
