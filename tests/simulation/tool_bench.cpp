#include "simulation/tool_bench.hpp"

#include <array>
#include <utility>

#include "simulation/job_texts.hpp"
#include "simulation/referee.hpp"
#include "values/fatal.hpp"

namespace tamo::simulation::ToolBench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Tool = std::shared_ptr<RunningTool>;

constexpr const char* closedPrompt = "execution error: User canceled. (-128)\n";

void end(World& world, const Tool& tool, std::int32_t status) {
  if (tool->done) return;
  tool->done = true;
  tool->status = status;
  world.trace.note(world.timeline.now(), "tool", tool->launch.path, " ends with ", status);
  if (tool->waiting != nullptr) world.timeline.wake(*std::exchange(tool->waiting, nullptr));
}

void print(World& world, const Tool& tool, std::string_view text) {
  const auto found = world.descriptors.find(tool->launch.standardOutput);
  if (found != world.descriptors.end()) world.files.append(found->second, text);
}

bool isPrint(const Tool& tool) {
  return tool->launch.arguments.front() == "print";
}

std::string printOf(const World& world) {
  return jobPrint(world.job.definition, world.job.corePid(), world.job.printForm);
}

/// Nothing is printed of a job that is not loaded.
void answer(World& world, const Tool& tool) {
  if (!world.job.loaded) return;
  print(world, tool, printOf(world));
}

void printJob(World& world, const Tool& tool) {
  if (!world.job.loaded) return end(world, tool, 113);
  answer(world, tool);
  end(world, tool, 0);
}

void launchctl(World& world, const Tool& tool) {
  const auto& arguments = tool->launch.arguments;
  if (isPrint(tool)) return printJob(world, tool);
  const bool kill = arguments[1] == "-k";
  world.job.kickstart(kill, [&world, tool](std::int32_t status) {
    world.timeline.after(world.dice.between(Time(0), milliseconds(5)),
                         [&world, tool, status] { end(world, tool, status); });
  });
}

/// The program's file comes last, so that a copy is whole only at the end.
void copyWhole(World& world, const Tool& tool, const std::string& from, const std::string& to) {
  if (tool->done) return;
  const bool whole = world.isWhole(from);
  world.files.copy(from, to);
  if (world.planted == Plant::HalfCopy) world.files.remove(to + "/Contents/MacOS/Tamo");
  Referee::copiesChanged(world);
  end(world, tool, whole ? 0 : 1);
}

void copyPart(World& world, const std::string& from, const std::string& to) {
  const std::string list(std::string(Places::helper) + std::string(Places::agentList));
  if (const auto* bytes = world.files.read(from + list)) world.files.write(to + list, *bytes);
}

void copyInSteps(World& world, const Tool& tool, const std::string& from, const std::string& to, bool fails) {
  auto& dice = world.dice;
  world.timeline.after(dice.between(Time(0), milliseconds(50)), [&world, tool, from, to] {
    if (!tool->done) copyPart(world, from, to);
  });
  world.timeline.after(dice.between(milliseconds(50), seconds(3)), [&world, tool, from, to, fails] {
    if (fails) {
      end(world, tool, 1);
    } else {
      copyWhole(world, tool, from, to);
    }
  });
}

/// The tool either copies in two steps, or fails with or without a part of the copy left behind.
void copyBundle(World& world, const Tool& tool, const std::string& from, const std::string& to, bool fails) {
  if (fails && world.dice.chance(500)) return end(world, tool, 1);
  copyInSteps(world, tool, from, to, fails);
}

void ditto(World& world, const Tool& tool) {
  const auto& arguments = tool->launch.arguments;
  const bool fails = !world.applicationsWritable || world.dice.chance(100);
  copyBundle(world, tool, arguments[0], arguments[1], fails);
}

/// The administrator's prompt: closed, refused, or answered and then a copy.
void osascript(World& world, const Tool& tool) {
  auto& dice = world.dice;
  const auto answer = world.administrator ? *world.administrator : dice.below(3);
  world.timeline.after(dice.between(milliseconds(500), seconds(20)), [&world, tool, answer] {
    if (answer == 0) tool->errors = closedPrompt;
    if (answer <= 1) return end(world, tool, 1);
    const auto& arguments = tool->launch.arguments;
    copyBundle(world, tool, arguments[arguments.size() - 2], arguments.back(), world.dice.chance(100));
  });
}

void work(World& world, const Tool& tool) {
  if (tool->done) return;
  const auto& path = tool->launch.path;
  if (path == "/bin/launchctl") {
    launchctl(world, tool);
  } else if (path == "/usr/bin/ditto") {
    ditto(world, tool);
  } else if (path == "/usr/bin/osascript") {
    osascript(world, tool);
  } else {
    end(world, tool, world.dice.chance(100) ? 1 : 0);
  }
}

void workAfter(World& world, const Tool& tool, Time delay) {
  world.timeline.after(delay, [&world, tool] { work(world, tool); });
}

void failAfter(World& world, const Tool& tool, std::int32_t status) {
  world.timeline.after(world.dice.between(Time(0), milliseconds(200)),
                       [&world, tool, status] { end(world, tool, status); });
}

void printGarbage(World& world, const Tool& tool) {
  constexpr std::array<std::string_view, 5> garbage{
      "gui/501/studio.pell.tamo.core = {\n\tpid = 1\n}\n", "\xff\xfe pid = 100 \x80\n",
      "a = {\n\tpid = \n\tpid = 12x\n\targuments = {\n", "}\n}\npid = 100\n", "pid = 0\n= {\n"};
  print(world, tool, world.dice.oneOf(garbage));
  failAfter(world, tool, 0);
}

/// An answer of which only the first half was written.
void printTorn(World& world, const Tool& tool) {
  const auto whole = printOf(world);
  print(world, tool, whole.substr(0, whole.size() / 2));
  failAfter(world, tool, 0);
}

/// What only a tool that copies can do wrong.
void failInPart(World& world, const Tool& tool, Way trouble) {
  const auto& arguments = tool->launch.arguments;
  if (trouble == Way::Cancelled) tool->errors = closedPrompt;
  if (trouble == Way::Cancelled) return failAfter(world, tool, 1);
  copyInSteps(world, tool, arguments[arguments.size() - 2], arguments.back(), true);
}

/// Only launchctl has a time limit, so only launchctl may hang. And only it may say that all is well when it
/// has done nothing: a copy that was not made could not be told from one that was.
void begin(World& world, const Tool& tool, Way trouble) {
  constexpr std::array<std::int32_t, 6> codes{1, 3, 5, 37, 112, 113};
  constexpr std::array<std::int32_t, 3> signals{6, 9, 15};
  auto& dice = world.dice;
  const bool onlyLaunchctl = trouble == Way::Garbage || trouble == Way::Hangs;
  // A launchctl may have answered before it goes wrong.
  if (trouble != Way::None && isPrint(tool) && dice.chance(200)) answer(world, tool);
  switch (onlyLaunchctl && tool->launch.path != "/bin/launchctl" ? Way::None : trouble) {
    case Way::Slow:
      return workAfter(world, tool, dice.between(milliseconds(100), seconds(7)));
    case Way::Exits:
      return failAfter(world, tool, dice.oneOf(codes));
    case Way::Signalled:
      return failAfter(world, tool, dice.oneOf(signals));
    case Way::Garbage:
      return printGarbage(world, tool);
    case Way::Binary:
      print(world, tool, "\xff\xfe pid = 100 \x80\n");
      return failAfter(world, tool, 0);
    case Way::Torn:
      return printTorn(world, tool);
    case Way::Empty:
    case Way::Idle:
      return failAfter(world, tool, 0);
    case Way::NotLoaded:
      return failAfter(world, tool, 113);
    case Way::Late:
      tool->deaf = true;
      return workAfter(world, tool, seconds(7));
    case Way::Part:
    case Way::Cancelled:
      return failInPart(world, tool, trouble);
    case Way::Answered:
      answer(world, tool);
      return failAfter(world, tool, 1);
    case Way::AnsweredHangs:
      return answer(world, tool);
    case Way::Hangs:
      return;
    case Way::None:
      return workAfter(world, tool, dice.between(milliseconds(1), milliseconds(30)));
    default:
      values::fatal("no tool fails so");
  }
}

}  // namespace

std::shared_ptr<RunningTool> start(World& world, const platform::ToolLaunch& launch, Way trouble) {
  auto tool = std::make_shared<RunningTool>();
  tool->launch = launch;
  tool->started = world.timeline.now();
  world.tools.push_back(tool);
  begin(world, tool, trouble);
  return tool;
}

void killAll(World& world) {
  for (const auto& started : world.tools) {
    const auto tool = started.lock();
    if (tool) end(world, tool, 9);
  }
  world.tools.clear();
}

void terminate(World& world, const std::shared_ptr<RunningTool>& tool) {
  if (tool->deaf || !world.dice.chance(800)) return;
  world.timeline.after(world.dice.between(Time(0), milliseconds(50)),
                       [&world, tool] { end(world, tool, 15); });
}

}  // namespace tamo::simulation::ToolBench
