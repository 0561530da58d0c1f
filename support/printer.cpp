#include "support/printer.hpp"

#include "support/layout.hpp"
#include "support/page.hpp"

namespace tamo::support {
namespace {

/// Times stand in a column of their own where there is room for two.
constexpr std::size_t widthForColumns = 60;

/// "812, 2.5 s": a process that the log doesn't name is left out, and so is the length of a single line.
std::string processAndLength(const Action& action) {
  std::string text = action.pid == 0 ? "" : "process " + std::to_string(action.pid);
  if (action.lines.size() == 1) return text;
  const auto length = action.lines.back().at.micros() - action.lines.front().at.micros();
  if (length < 0) return text;
  return text + (text.empty() ? "" : ", ") + lasting(length) + " from its first line to its last";
}

std::string inParentheses(const std::string& text) {
  return text.empty() ? "" : " (" + text + ")";
}

}  // namespace

void Printer::print(const Item& item) {
  if (const auto* told = std::get_if<Action>(&item)) return action(*told);
  aside(std::get<Aside>(item));
}

void Printer::remark(std::string_view text) {
  out_(paragraph(text, {}, width_));
}

void Printer::action(const Action& action) {
  ++actions_;
  const auto story = storyOf(action);
  heading(action, story);
  steps(story);
  labelled("What it means: ", story.meaning);
  labelled("What to do: ", story.advice);
  page(story.headings);
  out_("\n");
}

void Printer::heading(const Action& action, const Story& story) {
  const auto name = story.action.empty() ? "" : story.action + ": ";
  remark(dayAndTime(action.lines.front().at) + "  " + name + story.verdict +
         inParentheses(processAndLength(action)));
  if (!story.purpose.empty()) out_(paragraph("Asked: " + story.purpose + ".", {"  ", "         "}, width_));
}

void Printer::steps(const Story& story) {
  for (const auto& step : story.steps) {
    const auto first = "  " + timeOfDay(step.at) + "  ";
    const std::string others(width_ < widthForColumns ? 4 : first.size(), ' ');
    out_(paragraph(step.text, {first, others}, width_));
  }
}

void Printer::labelled(std::string_view label, const std::vector<std::string>& texts) {
  if (texts.empty()) return;
  std::string text(label);
  for (const auto& one : texts)
    text.append(one).append(" ");
  out_(paragraph(text, {"  ", "    "}, width_));
}

void Printer::page(const std::vector<std::string>& headings) {
  for (const auto& name : headings) {
    const bool again = !shown_.insert(name).second;
    out_(paragraph("docs/troubleshooting.md, \"" + name + "\"" + (again ? ", shown above" : ":"),
                   {"  ", "    "}, width_));
    const auto text = again ? std::nullopt : section(troubleshootingPage(), name);
    if (text) out_(typeset(*text, "  | ", width_));
  }
}

void Printer::aside(const Aside& aside) {
  remark(aside.remark);
  for (const auto& line : aside.lines)
    out_(verbatim(line, {"    ", "    "}, width_));
  out_("\n");
}

}  // namespace tamo::support
