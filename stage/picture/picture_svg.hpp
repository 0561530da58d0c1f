#pragma once

#include <string>

#include "stage/picture/picture.hpp"

namespace tamo::stage {

/// The picture as an SVG document: all text is text, it reads in light and in dark, and what a colour says is said by a
/// shape, a pattern or a word as well. Whatever the picture's texts hold, the document is well-formed. Pure.
[[nodiscard]] std::string svgOf(const Picture& picture);

}  // namespace tamo::stage
