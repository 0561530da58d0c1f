#include <functional>

#include "acceptance/report.hpp"
#include "values/json_text.hpp"

namespace tamo::acceptance {
namespace {

using values::jsonString;

std::string member(const std::string& name, const std::string& value) {
  return jsonString(name) + ": " + value;
}

std::string text(const std::string& name, const std::string& value) {
  return member(name, jsonString(value));
}

template <class Items, class One>
std::string list(const Items& items, One one) {
  std::string all;
  for (const auto& item : items)
    all += (all.empty() ? "" : ", ") + one(item);
  return "[" + all + "]";
}

std::string judgementOf(const Judgement& judgement) {
  return "{" + member("holds", judgement.holds ? "true" : "false") + ", " + text("what", judgement.what) +
         ", " + text("expected", judgement.expected) + ", " + text("seen", judgement.seen) + "}";
}

std::string factOf(const Fact& fact) {
  return "{" + text("question", fact.question) + ", " + text("answer", fact.answer) + "}";
}

std::string checkOf(const Played& played) {
  const auto& findings = played.findings;
  const auto file = [&](const Kept& kept) {
    return jsonString(std::string(played.check->name) + "/" + kept.name);
  };
  return "{" + text("name", std::string(played.check->name)) + ", " + text("theme", played.theme) + ", " +
         text("sees", std::string(played.check->sees)) + ", " + text("outcome", outcomeText(played.outcome)) +
         ", " + text("reason", played.reason) + ", " +
         member("milliseconds", std::to_string(played.took.count())) + ",\n   " +
         member("judgements", list(findings.judgements(), judgementOf)) + ",\n   " +
         member("facts", list(findings.facts(), factOf)) + ", " +
         member("files", list(findings.kept(), file)) + "}";
}

}  // namespace

std::string jsonOf(const Report& report) {
  const auto counts = countsOf(report.checks);
  std::string checks;
  for (const auto& played : report.checks)
    checks += (checks.empty() ? "\n  " : ",\n  ") + checkOf(played);
  return "{" + member("format", "1") + ", " + text("place", report.place.kind) + ", " +
         text("system", report.place.system) + ", " + text("processor", report.place.processor) + ", " +
         text("signature", report.place.signature) + ",\n " + text("begun", report.begun) + ", " +
         member("milliseconds", std::to_string(report.took.count())) + ", " +
         member("held", std::to_string(counts.held)) + ", " +
         member("failed", std::to_string(counts.failed)) + ", " +
         member("notPlayed", std::to_string(counts.notPlayed)) + ",\n " +
         member("checks", "[" + checks + "]") + "}\n";
}

}  // namespace tamo::acceptance
