#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The texts of the played Mac that the companion reads: property lists and launchctl's print.
namespace tamo::simulation {

/// A definition of the Core's job. Runs name the definitions by their place in this list.
struct JobDefinition {
  std::vector<std::string> arguments;
  std::optional<std::int64_t> exitTimeout;
};
[[nodiscard]] const std::vector<JobDefinition>& jobDefinitions();

[[nodiscard]] const std::string& agentPlist(std::size_t definition);
/// Absent when the text is none of the lists above.
[[nodiscard]] std::optional<std::size_t> definitionOf(std::string_view agentPlist);

[[nodiscard]] std::string infoPlist(std::string_view bundleID, std::string_view version);
/// The text after a key of an Info.plist of the form above; absent when there is none.
[[nodiscard]] std::optional<std::string> valueOf(std::string_view key, std::string_view infoPlist);

/// The form of launchctl's print: newer systems have blocks that open with `=> {` before the exit timeout and the pid.
enum class PrintForm { Plain, Managed };

/// The print of the loaded job; `pid` is its process's.
[[nodiscard]] std::string jobPrint(std::size_t definition, std::optional<std::int32_t> pid,
                                   PrintForm form = PrintForm::Plain);
struct PrintTold {
  std::size_t definition = 0;
  std::optional<std::int32_t> pid;
};
/// What a whole print of either form tells; absent for any other text.
[[nodiscard]] std::optional<PrintTold> toldBy(std::string_view print);

}  // namespace tamo::simulation
