#include "acceptance/mac/played_copies.hpp"

#include <algorithm>
#include <array>

namespace tamo::acceptance {

bool isOfAPlayedCopy(const std::string& program, const MacSettings& settings) {
  const std::array places{std::string(installedCopy) + "/", settings.downloads() + "/",
                          settings.dataDirectory() + "staged/", settings.home + "/.Trash/"};
  const auto holds = [&](const std::string& place) { return program.starts_with(place); };
  return std::ranges::any_of(places, holds) || program.contains("/AppTranslocation/");
}

}  // namespace tamo::acceptance
