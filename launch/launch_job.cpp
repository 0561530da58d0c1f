#include "launch/launch_job.hpp"

#include <algorithm>
#include <utility>

#include "values/property_list.hpp"
#include "values/text.hpp"
#include "values/unicode.hpp"

namespace tamo::LaunchJob {
namespace {

/// The state of reading one print. Lines are kept as views of the print until the end, so that a block which
/// is thrown away costs no copies.
class PrintReader {
 public:
  void read(std::string_view line) {
    if (collecting_) {
      collect(line);
    } else if (line == "}") {
      --depth_;
    } else if (line.ends_with("= {")) {
      open(line);
    } else if (depth_ == jobDepth && line.starts_with(exitTimeoutKey)) {
      exitTimeout_ = values::decimalInt64(line.substr(exitTimeoutKey.size()));
    }
  }

  [[nodiscard]] std::optional<Definition> definition() const {
    if (!arguments_ || collecting_ || arguments_->empty()) return std::nullopt;
    return Definition{.arguments = {arguments_->begin(), arguments_->end()}, .exitTimeout = exitTimeout_};
  }

 private:
  static constexpr std::string_view exitTimeoutKey = "exit timeout = ";
  /// The inside of the print's outermost block.
  static constexpr std::int64_t jobDepth = 1;

  void collect(std::string_view line) {
    if (line == "}") {
      --depth_;
      collecting_ = false;
    } else {
      // NOLINTNEXTLINE(bugprone-unchecked-optional-access): the list is there from the line that opens it.
      arguments_->push_back(line);
    }
  }

  void open(std::string_view line) {
    ++depth_;
    if (depth_ != jobDepth + 1 || line != "arguments = {" || arguments_) return;
    arguments_.emplace();
    collecting_ = true;
  }

  /// Goes below zero when a print closes more than it opened.
  std::int64_t depth_ = 0;
  bool collecting_ = false;
  std::optional<std::vector<std::string_view>> arguments_;
  std::optional<std::int64_t> exitTimeout_;
};

/// As a Mac compares texts: an accent in the path of a bundle has two spellings, and both start the same
/// program.
bool sameTexts(const std::vector<std::string>& left, const std::vector<std::string>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), values::canonicallyEqual);
}

/// Absent unless the value is a list of nothing but texts, and of one at least.
std::optional<std::vector<std::string>> someTexts(const values::PropertyList* value) {
  const auto* elements = value == nullptr ? nullptr : value->array();
  if (elements == nullptr || elements->empty()) return std::nullopt;
  std::vector<std::string> texts;
  for (const auto& element : *elements) {
    const auto* text = element.text();
    if (text == nullptr) return std::nullopt;
    texts.push_back(*text);
  }
  return texts;
}

}  // namespace

bool operator==(const Definition& left, const Definition& right) {
  return left.exitTimeout == right.exitTimeout && sameTexts(left.arguments, right.arguments);
}

std::optional<Definition> loaded(std::string_view fromPrint) {
  PrintReader reader;
  std::optional rest(fromPrint);
  while (rest) {
    const auto line = values::takeLine(rest);
    reader.read(values::trimmed(line));
  }
  return reader.definition();
}

std::optional<Definition> bundled(std::string_view plist) {
  const auto list = values::readPropertyList(plist);
  if (!list) return std::nullopt;
  auto arguments = someTexts(list->entry("ProgramArguments"));
  if (!arguments) return std::nullopt;
  const auto* exitTimeout = list->entry("ExitTimeOut");
  return Definition{.arguments = std::move(*arguments),
                    .exitTimeout = exitTimeout == nullptr ? std::nullopt : values::exactInt64(*exitTimeout)};
}

/// A reseat interrupts the Core and takes it out of launchd's hands for a moment. So only a difference that
/// is seen asks for one: what cannot be read, or what one side does not state, would ask for it again at
/// every start.
bool needsReseat(const std::optional<Definition>& loaded, const std::optional<Definition>& bundled) {
  if (!loaded || !bundled) return false;
  if (!sameTexts(loaded->arguments, bundled->arguments)) return true;
  return loaded->exitTimeout && bundled->exitTimeout && *loaded->exitTimeout != *bundled->exitTimeout;
}

/// The arguments of a process that runs tell by which definition it was started; its exit timeout shows
/// nowhere.
bool staleLaunch(const std::vector<std::string>& arguments, const std::optional<Definition>& bundled) {
  if (!bundled || arguments.empty()) return false;
  return !sameTexts(arguments, bundled->arguments);
}

bool syncAtLaunch(const std::optional<std::string>& build, const std::optional<std::string>& lastSynced) {
  if (!build || build->empty()) return false;
  return !lastSynced || !values::canonicallyEqual(*build, *lastSynced);
}

}  // namespace tamo::LaunchJob
