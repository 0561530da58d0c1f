#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Reads an SVG document as far as its form goes.
namespace tamo::stage {

/// Why the text is no well-formed XML document of elements, attributes and texts; empty when it is one.
[[nodiscard]] std::string wrongInXml(std::string_view text);

/// The form of a picture in lines: its size without the height, its style sheet and definitions, then each row by its
/// kind and name, with the kinds of spans and marks in it, each once and sorted, then the kinds of signals and the
/// labels of the legend. Numbers in names are left out, and so is how often something happened.
[[nodiscard]] std::vector<std::string> formOf(std::string_view svg);

/// The texts of all elements with this class, unescaped, in order.
[[nodiscard]] std::vector<std::string> textsOfClass(std::string_view svg, std::string_view wanted);

}  // namespace tamo::stage
