#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "acceptance/redaction.hpp"

/// Who signs, as the system's tools tell it. Pure.
namespace tamo::acceptance {

/// The names of the identities of `security find-identity` that the given one may mean: by its name, a part of it, or
/// its hash; and the given one. None for "-".
[[nodiscard]] std::vector<std::string> identitiesMeant(std::string_view identities,
                                                       const std::string& identity);

/// What names a person, a certificate or a team in the names of identities.
[[nodiscard]] std::vector<Secret> signersOf(const std::vector<std::string>& names);

/// The team in a certificate's subject, as `openssl x509 -subject` tells it: the organizational unit, whatever stands in
/// the certificate's name. Empty without one.
[[nodiscard]] std::string teamOfSubject(std::string_view subject);

/// The identifier in what `codesign --display` says of a program; empty without one.
[[nodiscard]] std::string signingIdentifierIn(std::string_view display);

}  // namespace tamo::acceptance
