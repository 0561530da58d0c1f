#pragma once

#include <cstddef>
#include <string>

#include "stage/picture/picture.hpp"

namespace tamo::stage {

/// The narrowest terminal that a picture is drawn for.
inline constexpr std::size_t narrowestText = 24;
/// The width where nobody says another.
inline constexpr std::size_t usualText = 100;

/// The picture as lines of text, none longer than so many columns: `columns` is at least narrowestText. Pure.
[[nodiscard]] std::string textOf(const Picture& picture, std::size_t columns);

}  // namespace tamo::stage
