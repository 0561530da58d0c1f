#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "acceptance/redaction.hpp"

/// Who signs, as the system's tools tell it. Pure.
namespace tamo::acceptance {

/// What names a person or a team among the identities of `security find-identity` that the given one may mean: by its
/// name, a part of it, or its hash.
[[nodiscard]] std::vector<Secret> signersOf(std::string_view identities, const std::string& identity);

/// The identifier in what `codesign --display` says of a program; empty without one.
[[nodiscard]] std::string signingIdentifierIn(std::string_view display);

}  // namespace tamo::acceptance
