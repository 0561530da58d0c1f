#include "acceptance/check.hpp"

namespace tamo::acceptance {

const std::vector<Theme>& allThemes() {
  static const std::vector<Theme> themes{
      actionChecks(),     sequenceChecks(), hardStopChecks(), spareChecks(), reseatChecks(),
      definitionChecks(), urlChecks(),      copyChecks(),     crowdChecks(), lockChecks(),
      printChecks(),      privacyChecks(),  moveChecks(),     systemChecks()};
  return themes;
}

const Check* checkNamed(std::string_view name) {
  for (const auto& theme : allThemes())
    for (const auto& check : theme.checks)
      if (check.name == name) return &check;
  return nullptr;
}

}  // namespace tamo::acceptance
