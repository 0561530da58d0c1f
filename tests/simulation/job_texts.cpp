#include "simulation/job_texts.hpp"

#include <charconv>

namespace tamo::simulation {
namespace {

constexpr std::string_view listBegin =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>";
constexpr std::string_view listEnd = "</dict></plist>\n";

constexpr std::string_view managedBlock =
    "\tLWCR = {\n\t\t\"reqs\" => {\n\t\t\t\"cdhash\" => {\n\t\t\t\t\"$in\" => [\n\t\t\t\t\t0 = "
    "\t\t\t\t]\n\t\t\t}\n"
    "\t\t}\n\t\t\"vers\" => 1\n\t}\n\n";

std::string entry(std::string_view key, std::string_view value) {
  return "<key>" + std::string(key) + "</key>" + std::string(value);
}

std::string text(std::string_view value) {
  return "<string>" + std::string(value) + "</string>";
}

std::string written(const JobDefinition& definition) {
  std::string arguments;
  for (const auto& argument : definition.arguments)
    arguments += text(argument);
  auto list = std::string(listBegin) + entry("Label", text("studio.pell.tamo.core")) +
              entry("ProgramArguments", "<array>" + arguments + "</array>");
  if (definition.exitTimeout)
    list += entry("ExitTimeOut", "<integer>" + std::to_string(*definition.exitTimeout) + "</integer>");
  return list.append(listEnd);
}

const std::vector<std::string>& plists() {
  static const std::vector<std::string> all = [] {
    std::vector<std::string> texts;
    for (const auto& definition : jobDefinitions())
      texts.push_back(written(definition));
    return texts;
  }();
  return all;
}

}  // namespace

const std::vector<JobDefinition>& jobDefinitions() {
  static const std::vector<JobDefinition> all{
      {{"/Applications/Tamo.app/Contents/MacOS/agent"}, 5},
      {{"/Applications/Tamo.app/Contents/MacOS/agent", "--quiet"}, 5},
      {{"/Applications/Tamo.app/Contents/MacOS/agent"}, 20},
      {{"/Applications/Tamo.app/Contents/MacOS/agent"}, std::nullopt},
  };
  return all;
}

const std::string& agentPlist(std::size_t definition) {
  return plists()[definition];
}

std::optional<std::size_t> definitionOf(std::string_view agentPlist) {
  for (std::size_t index = 0; index < plists().size(); ++index) {
    if (plists()[index] == agentPlist) return index;
  }
  return std::nullopt;
}

std::string infoPlist(std::string_view bundleID, std::string_view version) {
  return std::string(listBegin) + entry("CFBundleIdentifier", text(bundleID)) +
         entry("CFBundleVersion", text(version)) + std::string(listEnd);
}

std::optional<std::string> valueOf(std::string_view key, std::string_view infoPlist) {
  const auto opening = entry(key, "<string>");
  const auto found = infoPlist.find(opening);
  if (found == std::string_view::npos) return std::nullopt;
  const auto value = infoPlist.substr(found + opening.size());
  return std::string(value.substr(0, value.find('<')));
}

std::string jobPrint(std::size_t definition, std::optional<std::int32_t> pid, PrintForm form) {
  const auto& job = jobDefinitions()[definition];
  std::string print = "gui/501/studio.pell.tamo.core = {\n\tactive count = 1\n\ttype = LaunchAgent\n";
  print += pid ? "\tstate = running\n" : "\tstate = not running\n";
  print += "\targuments = {\n";
  for (const auto& argument : job.arguments)
    print += "\t\t" + argument + "\n";
  print += "\t}\n\n\tdefault environment = {\n\t\tPATH => /usr/bin:/bin\n\t}\n\n";
  if (form == PrintForm::Managed) print += managedBlock;
  print += "\tminimum runtime = 10\n";
  if (job.exitTimeout) print += "\texit timeout = " + std::to_string(*job.exitTimeout) + "\n";
  if (pid) print += "\tpid = " + std::to_string(*pid) + "\n";
  return print + "\tendpoints = {\n\t\t\"studio.pell.tamo.core\" = {\n\t\t\tport = 0x907\n\t\t}\n\t}\n}\n";
}

std::optional<PrintTold> toldBy(std::string_view print) {
  constexpr std::string_view opening = "\tpid = ";
  const auto found = print.find(opening);
  PrintTold told;
  if (found != std::string_view::npos) {
    told.pid = 0;
    std::from_chars(print.data() + found + opening.size(), print.data() + print.size(), *told.pid);
  }
  for (; told.definition < jobDefinitions().size(); ++told.definition) {
    for (const auto form : {PrintForm::Plain, PrintForm::Managed})
      if (jobPrint(told.definition, told.pid, form) == print) return told;
  }
  return std::nullopt;
}

}  // namespace tamo::simulation
