#pragma once

#include <string>

#include "acceptance/place.hpp"

/// The property lists of a sample application. Pure.
namespace tamo::acceptance {

/// Of the outer application.
[[nodiscard]] std::string sampleInfo(const std::string& build);
/// Of the agent, in its XML form; `program` is the agent's path in the installed copy.
[[nodiscard]] std::string sampleAgentList(const Definition& definition, const std::string& program);

}  // namespace tamo::acceptance
