#include "app/outcome_record.hpp"

#include <optional>

namespace tamo {
namespace {

std::string printed(const OutcomeValue& value) {
  if (const auto* truth = std::get_if<bool>(&value)) return *truth ? "true" : "false";
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  return std::get<std::string>(value);
}

std::optional<std::string> printed(const OutcomeRecord& record, std::string_view key) {
  const auto found = record.find(key);
  if (found == record.end()) return std::nullopt;
  return printed(found->second);
}

/// `word` and the value of `key`, each after a blank; nothing when there is no such key.
std::string phrase(const OutcomeRecord& record, std::string_view key, const std::string& word) {
  const auto value = printed(record, key);
  return value ? " " + word + " " + *value : "";
}

/// The outcome line has always shown the value as an optional, and is searched for in this form.
std::string okText(const OutcomeRecord& record) {
  const auto value = printed(record, "ok");
  return value ? "Optional(" + *value + ")" : "nil";
}

std::string errorText(const OutcomeRecord& record) {
  if (!record.contains("domain")) return "";
  return phrase(record, "domain", "error") + " " + printed(record, "code").value_or("");
}

/// An argument of its own, because it alone is private in the log: an error's text may name what is the
/// user's.
std::string descriptionText(const OutcomeRecord& record) {
  const auto found = record.find("description");
  const auto* text = found == record.end() ? nullptr : std::get_if<std::string>(&found->second);
  return text == nullptr ? "" : " " + *text;
}

}  // namespace

/// Made anew: what a route had stored before it failed would read as done.
OutcomeRecord failureRecord(const platform::Error& error) {
  return {
      {"ok", false},
      {"domain", error.domain()},
      {"code", error.code()},
      {"description", error.description()},
  };
}

platform::LogLine outcomeLine(const std::string& action, std::int64_t status, const OutcomeRecord& record) {
  return {platform::LogFormat::outcome,
          {action, status, okText(record),
           phrase(record, "kickstart", "kickstart") + phrase(record, "reseated", "reseated"),
           errorText(record), descriptionText(record)}};
}

}  // namespace tamo
