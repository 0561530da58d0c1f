#include "support/printer.hpp"

#include <algorithm>
#include <utility>

#include "support/explanation.hpp"
#include "support/layout.hpp"
#include "support/page.hpp"

namespace tamo::support {
namespace {

/// Times stand in a column of their own where there is room for two.
constexpr std::size_t widthForColumns = 60;

/// "process 812, 2.5 s", from the first line to the last. What the log doesn't tell is left out. A length is left out
/// when the clock was set back meanwhile.
std::string processAndLength(const Action& action) {
  std::string text = action.pid == 0 ? "" : "process " + std::to_string(action.pid);
  if (action.lines.size() == 1) return text;
  const auto length = action.lines.back().at.micros() - action.lines.front().at.micros();
  if (length < 0) return text;
  return text + (text.empty() ? "" : ", ") + lasting(length);
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
  labelled("What to do: ", story.advice.empty() ? std::vector<std::string>{"Nothing."} : story.advice);
  page(story.headings);
  out_("\n");
}

void Printer::heading(const Action& action, const Story& story) {
  const auto name = story.action.empty() ? "" : story.action + ": ";
  remark(dayAndTime(action.lines.front().at) + " " + name + story.verdict +
         inParentheses(processAndLength(action)));
  if (!story.purpose.empty()) out_(body("Asked: " + story.purpose + ".", 2, 9));
}

/// The text set with blanks for its margins; what is printed into the first of them comes later. A log of a gigabyte
/// says few things, each many times. What is kept is dropped whole when it is full: what comes again is soon set again.
const std::string& Printer::body(const std::string& text, std::size_t first, std::size_t others) {
  constexpr std::size_t most = 512;
  auto& known = bodies_[{first, others}];
  const auto found = known.find(text);
  if (found != known.end()) return found->second;
  if (known.size() == most) known.clear();
  const std::string margins(std::max(first, others), ' ');
  const auto margin = [&](std::size_t size) { return std::string_view(margins).substr(0, size); };
  return known[text] = paragraph(text, {margin(first), margin(others)}, width_);
}

/// The time of a step is printed over the blanks of its margin. Set together with its text it would make each of them
/// another one.
void Printer::steps(const Story& story) {
  for (const auto& step : story.steps) {
    const auto first = "  " + timeOfDay(step.at) + "  ";
    const auto& text = body(step.text, first.size(), width_ < widthForColumns ? 4 : first.size());
    out_(first);
    out_(std::string_view(text).substr(first.size()));
  }
}

void Printer::labelled(const std::string& label, const std::vector<std::string>& texts) {
  if (texts.empty()) return;
  auto text = label;
  for (const auto& one : texts)
    text.append(one).append(" ");
  out_(body(text, 2, 4));
}

void Printer::page(const std::vector<std::string>& headings) {
  for (const auto& name : headings) {
    const bool again = !shown_.insert(name).second;
    out_(body("docs/troubleshooting.md, \"" + name + "\"" + (again ? ", shown above" : ":"), 2, 4));
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
