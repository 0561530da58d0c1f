#include "simulation/tool_rules.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "simulation/course_rules.hpp"

namespace tamo::simulation::Referee {
namespace {

using platform::ToolLaunch;
using Words = std::vector<std::string>;

constexpr std::size_t errorLimit = 4096;
constexpr const char* job = "gui/501/studio.pell.tamo.core";
constexpr const char* installed = "/Applications/Tamo.app";
constexpr const char* script =
    "do shell script (\"/usr/bin/ditto \" & quoted form of item 1 of argv & \" \" & quoted form of item 2 of "
    "argv "
    "& \" && /usr/bin/xattr -dr com.apple.quarantine \" & quoted form of item 2 of argv) with prompt \"Tamo "
    "wants "
    "to move itself into your Applications folder.\" with administrator privileges";

/// A tool with its words, and the letter that it has in the courses below.
struct Known {
  char letter;
  std::string path;
  Words words;
};

std::vector<Known> knownTo(const Companion& companion) {
  const auto& copy = companion.plan.copy;
  return {{'p', "/bin/launchctl", {"print", job}},
          {'s', "/bin/launchctl", {"kickstart", job}},
          {'k', "/bin/launchctl", {"kickstart", "-k", job}},
          {'d', "/usr/bin/ditto", {copy, installed}},
          {'x', "/usr/bin/xattr", {"-dr", "com.apple.quarantine", installed}},
          {'o', "/usr/bin/osascript", {"-e", "on run argv", "-e", script, "-e", "end run", copy, installed}}};
}

/// Zero for a tool or for words that no companion has.
char letterOf(const Companion& companion, const ToolLaunch& launch) {
  for (const auto& known : knownTo(companion)) {
    if (known.path == launch.path && known.words == launch.arguments) return known.letter;
  }
  return 0;
}

/// Only a print's output is wanted, in its file; only of the tools that copy, what they have to say.
bool hasItsStreams(const Companion& companion, const ToolLaunch& launch, char letter) {
  const bool launchctl = launch.path == "/bin/launchctl";
  if (launch.capturesErrors == launchctl) return false;
  if (letter != 'p') return launch.standardOutput == -1;
  const auto& descriptors = companion.world.descriptors;
  const auto found = descriptors.find(launch.standardOutput);
  return found != descriptors.end() &&
         found->second.ends_with("-" + std::to_string(companion.pid()) + ".txt");
}

struct Course {
  std::string_view action;
  std::string_view tools;
};

/// The longest courses of tools that an action has. A print that has no file is not asked for.
constexpr std::array<Course, 8> courses{{{"register", "spp"},
                                         {"reseat", "p"},
                                         {"restart", "ppkpp"},
                                         {"restart", "pkpp"},
                                         {"restart", "kpp"},
                                         {"sync", "pp"},
                                         {"move-to-applications", "dx"},
                                         {"move-to-applications", "do"}}};

bool isOnCourse(std::string_view action, std::string_view started) {
  return std::any_of(courses.begin(), courses.end(), [action, started](const Course& course) {
    return course.action == action && course.tools.starts_with(started);
  });
}

std::int32_t lastStatus(const Record& record) {
  return record.tools.empty() ? 0 : record.tools.back().status.value_or(0);
}

bool wasEnabled(const Record& record) {
  return !record.statuses.empty() && record.statuses.back() == 1;
}

/// Why a job is printed: to compare it; to watch what is asked to stop; to see whether it runs, which a kickstart that
/// failed makes doubtful.
bool mayPrint(const Record& record, std::string_view action) {
  const bool kickstarted = record.kickstarts > 0;
  const bool answered = record.socketAnswered || (record.homeKnown && record.socketsTried < 2);
  if (!wasEnabled(record) || (kickstarted && record.kickstart.value_or(0) == 0)) return false;
  if (action == "register") return kickstarted && !answered;
  return action != "sync" || record.tools.empty() || record.definitionChanged;
}

/// What the companion was told so far has to ask for the tool.
bool isDue(const Companion& companion, char letter, std::string_view action) {
  const auto& record = companion.record;
  switch (letter) {
    case 'p':
      return mayPrint(record, action);
    case 's':
      return wasEnabled(record) && record.statuses.size() == 1;
    case 'k':
      return wasEnabled(record) && !record.definitionChanged;
    case 'x':
      return lastStatus(record) == 0;
    case 'o':
      return lastStatus(record) != 0 && record.folderWritable == false;
    default:
      return true;
  }
}

}  // namespace

void startsTool(Companion& companion, const ToolLaunch& launch) {
  auto& record = companion.record;
  constexpr auto rule = Invariant::Tools;
  const auto letter = letterOf(companion, launch);
  companion.expect(letter != 0, rule, "other words than the tool's");
  companion.expect(hasItsStreams(companion, launch, letter), rule, "other streams than the tool's");
  const auto& action = actionOf(companion);
  auto started = record.toolCourse + letter;
  const bool due = record.dispatched && isOnCourse(action, started) && isDue(companion, letter, action);
  companion.expect(due, rule, "a tool out of turn: " + started);
  record.toolCourse = std::move(started);
  record.tools.push_back({});
}

void toolTold(Companion& companion, std::size_t tool, std::int32_t status) {
  companion.record.tools[tool].status = status;
}

void readsErrors(Companion& companion, const ToolLaunch& launch, std::size_t limit) {
  companion.expect(launch.capturesErrors && limit == errorLimit, Invariant::Tools,
                   "other errors than the tool's");
}

/// A copy is freed of its mark; one that failed is tried again with the administrator's rights where the user has none.
void copyingEnded(Companion& companion) {
  const auto& record = companion.record;
  const auto& course = record.toolCourse;
  if (course.empty()) return;
  const bool alone = record.tools.front().status != 0 && record.folderWritable.value_or(false);
  companion.expect(course == "d" ? alone : course == "dx" || course == "do", Invariant::Tools, course);
}

}  // namespace tamo::simulation::Referee
