#include "support/error_words.hpp"

#include "launch/agent_registration.hpp"
#include "support/headings.hpp"

namespace tamo::support {
namespace {

constexpr std::string_view serviceDomain = "SMAppServiceErrorDomain";

/// What the codes of the system's service management are known to mean.
std::string_view serviceErrorName(std::int64_t code) {
  switch (code) {
    case 1:
      return "operation not permitted";
    case 3:
      return "a signature is not valid";
    case 6:
      return "the agent is not registered";
    case 8:
      return "the agent's property list is missing from the bundle";
    case 10:
      return "the agent's property list is not valid";
    case 11:
      return "the user has not allowed the agent";
    case 12:
      return "the agent is registered already";
    default:
      return "";
  }
}

/// TamoPlatform is the companion's own name for a refusal that the system gave no error for.
std::string_view errorName(const ErrorSaid& error) {
  if (error.domain == "TamoCore" && error.code == 64) return "there is no such action";
  if (error.domain == "TamoPlatform" && error.code == 1) return "the system failed without giving an error";
  return error.domain == serviceDomain && error.code ? serviceErrorName(*error.code) : "";
}

std::string descriptionInWords(const OutcomeSaid& said) {
  if (!said.description)
    return " Its description is private: the log shows <private> in its place and doesn't hold it.";
  return said.description->empty() ? "" : " Its description: " + *said.description;
}

bool isService(const OutcomeSaid& said, std::int64_t code) {
  return said.error && said.error->domain == serviceDomain && said.error->code == code;
}

/// Whether the action unregisters before it registers.
bool registersAnew(const Facts& facts) {
  const auto& action = facts.outcome->action;
  const bool changed = facts.definition != nullptr && facts.definition->changed;
  return action == "reseat" ||
         ((action == "restart" || action == "sync") && (changed || !facts.hardStops.empty()));
}

Advice unknownActionAdvice(const OutcomeSaid& said) {
  return {
      .heading = heading::unknownAction,
      .meaning = "\"" + said.action + "\" is no action of the companion's; nothing was done.",
      .next = "Ask for one of register, unregister, reseat, restart, sync, status and move-to-applications."};
}

/// By public reports the system refuses a registering right after an unregistering now and then, and takes it half a
/// second later.
Advice notRegisteredAnew() {
  return {.heading = heading::afterReseat,
          .meaning =
              "The agent was unregistered, and registering it again failed, as it now and then does right "
              "after. It "
              "is not registered now, and the Core does not run.",
          .next =
              "Wait a second, then ask for register. If that fails as well, see the page's paragraph on the "
              "error."};
}

/// By public reports a registering without approval can end with the code 11 or 1 instead of with the status 2.
Advice refusedByTheUser() {
  return {
      .heading = heading::approval,
      .meaning =
          "The agent waits for the user's approval, or the user has switched it off. After an error the "
          "settings "
          "are not opened.",
      .next =
          "Have the user switch Tamo on in System Settings, General, Login Items, then ask for register."};
}

Advice signatureAdvice() {
  return {.heading = heading::serviceError,
          .meaning = "Something in the application was changed after it had been signed.",
          .next =
              "Check it with codesign --verify --strict --deep --verbose=2 /Applications/Tamo.app, and "
              "install Tamo "
              "afresh."};
}

Advice propertyListAdvice() {
  return {.heading = heading::serviceError,
          .meaning = "The companion's bundle is not whole.",
          .next = "Install Tamo afresh."};
}

/// An unregistering that finds no agent has come to what it was for, though its line says that it failed.
Advice serviceErrorAdvice(const OutcomeSaid& said) {
  if (isService(said, 3)) return signatureAdvice();
  if (isService(said, 8) || isService(said, 10)) return propertyListAdvice();
  if (isService(said, 6) && said.action == "unregister")
    return {.heading = heading::serviceError,
            .meaning = "The agent was not registered, so there was nothing to unregister.",
            .next = "Nothing is left to do."};
  return {.heading = heading::serviceError,
          .meaning = "The system's service management refused what was asked of it.",
          .next = "Ask for status; then go through the page's paragraph on the error, by its code."};
}

}  // namespace

std::string errorInWords(const OutcomeSaid& said) {
  if (!said.error) return "";
  const auto name = errorName(*said.error);
  std::string text = "It failed with the error " + said.error->domain;
  if (said.error->code) text += " " + std::to_string(*said.error->code);
  if (!name.empty()) text.append(" (").append(name).append(")");
  return text + "." + descriptionInWords(said);
}

/// The status after the error comes before its code, because the system gives one code for several reasons: 1 alone
/// stands for a missing approval, for a missing record and for haste.
Advice errorAdvice(const Facts& facts) {
  if (facts.outcome == nullptr || !facts.outcome->error) return {};
  const auto& said = *facts.outcome;
  if (said.error->domain == "TamoCore") return unknownActionAdvice(said);
  if (said.status == AgentStatus::requiresApproval || isService(said, 11)) return refusedByTheUser();
  if (said.status == AgentStatus::notRegistered && isService(said, 1) && registersAnew(facts))
    return notRegisteredAnew();
  if (said.status == AgentStatus::notFound && !isService(said, 3))
    return {.heading = heading::notFound,
            .meaning = "The system doesn't find the agent's property list in the bundle that asked.",
            .next =
                "Install Tamo afresh and ask for register; if a copy of Tamo was thrown away, its record can "
                "stand in "
                "the way (see the page)."};
  return serviceErrorAdvice(said);
}

}  // namespace tamo::support
