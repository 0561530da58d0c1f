#include "stage/launchd/job_definition.hpp"

#include "values/paths.hpp"

namespace tamo::stage {
namespace {

using values::PropertyList;

std::optional<std::string> textAt(const PropertyList& list, const std::string& key) {
  const auto* entry = list.entry(key);
  if (entry == nullptr || entry->text() == nullptr) return std::nullopt;
  return *entry->text();
}

/// KeepAlive may be a dictionary of conditions on a Mac. The stage knows none of them and takes it for no.
bool flagAt(const PropertyList& list, const std::string& key) {
  const auto* entry = list.entry(key);
  const auto* flag = entry != nullptr ? std::get_if<bool>(&entry->value) : nullptr;
  return flag != nullptr && *flag;
}

std::chrono::seconds secondsAt(const PropertyList& list, const std::string& key,
                               std::chrono::seconds otherwise) {
  const auto* entry = list.entry(key);
  const auto number = entry != nullptr ? values::exactInt64(*entry) : std::nullopt;
  // A span that no clock can be advanced by is as good as none stated.
  const auto tooLong = std::chrono::seconds(std::chrono::years(100)).count();
  if (!number || *number < 0 || *number > tooLong) return otherwise;
  return std::chrono::seconds(*number);
}

/// Absent for a list that holds anything but texts; empty when there is no list.
std::optional<std::vector<std::string>> argumentsOf(const PropertyList& list) {
  std::vector<std::string> arguments;
  const auto* entry = list.entry("ProgramArguments");
  if (entry == nullptr) return arguments;
  if (entry->array() == nullptr) return std::nullopt;
  for (const auto& element : *entry->array()) {
    if (element.text() == nullptr) return std::nullopt;
    arguments.push_back(*element.text());
  }
  return arguments;
}

/// A variable that is no text is left out, and the job starts without it.
std::map<std::string, std::string> environmentOf(const PropertyList& list) {
  std::map<std::string, std::string> environment;
  const auto* entry = list.entry("EnvironmentVariables");
  if (entry == nullptr || entry->dictionary() == nullptr) return environment;
  for (const auto& [name, value] : *entry->dictionary())
    if (value.text() != nullptr) environment[name] = *value.text();
  return environment;
}

/// The program of a bundle's agent is named within the bundle, which may lie anywhere.
std::optional<std::string> programOf(const PropertyList& list, const JobDefinition& definition) {
  if (definition.bundleProgram) {
    const auto bundle = bundleOfAgentList(definition.path);
    if (!bundle) return std::nullopt;
    return values::joinedPath(*bundle, *definition.bundleProgram);
  }
  if (auto program = textAt(list, "Program")) return program;
  if (definition.arguments.empty()) return std::nullopt;
  return definition.arguments.front();
}

}  // namespace

/// Read when a job is loaded and never again: what is changed in a list shows at the next loading.
std::optional<JobDefinition> jobDefinition(const PropertyList& list, const std::string& path) {
  JobDefinition definition;
  definition.path = path;
  const auto label = textAt(list, "Label");
  auto arguments = argumentsOf(list);
  if (!label || label->empty() || !arguments) return std::nullopt;
  definition.label = *label;
  definition.arguments = std::move(*arguments);
  definition.bundleProgram = textAt(list, "BundleProgram");
  auto program = programOf(list, definition);
  if (!program || program->empty()) return std::nullopt;
  definition.program = std::move(*program);
  if (definition.arguments.empty()) definition.arguments.push_back(definition.program);
  definition.exitTimeout = secondsAt(list, "ExitTimeOut", definition.exitTimeout);
  definition.throttle = secondsAt(list, "ThrottleInterval", definition.throttle);
  definition.keepAlive = flagAt(list, "KeepAlive");
  definition.runAtLoad = flagAt(list, "RunAtLoad");
  definition.abandonProcessGroup = flagAt(list, "AbandonProcessGroup");
  definition.environment = environmentOf(list);
  return definition;
}

std::optional<std::string> bundleOfAgentList(std::string_view path) {
  const auto folder = path.rfind("/Contents/Library/LaunchAgents/");
  if (folder == std::string_view::npos || folder == 0) return std::nullopt;
  return std::string(path.substr(0, folder));
}

}  // namespace tamo::stage
