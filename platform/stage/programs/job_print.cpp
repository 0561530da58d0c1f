#include "platform/stage/programs/job_print.hpp"

#include <cstring>
#include <string_view>

namespace tamo::stage {
namespace {

/// The text of one job: every line a tab deeper than the header, blocks closed by the caller's second half.
class Printer {
 public:
  void line(std::string_view key, std::string_view value) {
    text.append("\t").append(key).append(" = ").append(value).append("\n");
  }
  void open(std::string_view key) { text.append("\t").append(key).append(" = {\n"); }
  void inner(std::string_view value) { text.append("\t\t").append(value).append("\n"); }
  void close() { text += "\t}\n\n"; }
  void gap() { text += "\n"; }
  void raw(std::string_view value) { text += value; }
  std::string text;
};

std::string domainName(std::uint32_t userID) {
  return "gui/" + std::to_string(userID);
}

std::string_view stateText(const Job& job) {
  if (job.pid) return "running";
  return job.state == Job::State::Scheduled ? "spawn scheduled" : "not running";
}

std::string exitText(const Ending& ending) {
  const auto number = std::to_string(ending.number);
  if (ending.signalled) return std::string(strsignal(ending.number)) + ": " + number;
  return ending.number == 78 ? number + ": EX_CONFIG" : number;
}

void printProgram(Printer& printer, const JobDefinition& definition) {
  printer.line("program", definition.program);
  printer.open("arguments");
  for (const auto& argument : definition.arguments)
    printer.inner(argument);
  printer.close();
}

void printEnvironment(Printer& printer, const JobDefinition& definition) {
  printer.open("default environment");
  printer.inner("PATH => /usr/bin:/bin:/usr/sbin:/sbin");
  printer.close();
  printer.open("environment");
  for (const auto& [name, value] : definition.environment)
    printer.inner(name + " => " + value);
  printer.inner("XPC_SERVICE_NAME => " + definition.label);
  printer.close();
}

void printConstraint(Printer& printer) {
  printer.raw(
      "\tLWCR = {\n"
      "\t\t\"reqs\" => {\n"
      "\t\t\t\"team-identifier\" => \"STAGE00000\"\n"
      "\t\t}\n"
      "\t\t\"vers\" => 1\n"
      "\t}\n\n");
}

void printRun(Printer& printer, const Job& job, const std::string& domain) {
  printer.line("domain", domain + " [100000]");
  printer.line("asid", "100000");
  printer.line("minimum runtime", std::to_string(job.definition.throttle.count()));
  printer.line("exit timeout", std::to_string(job.definition.exitTimeout.count()));
  printer.line("runs", std::to_string(job.runs));
  if (job.pid) {
    printer.line("pid", std::to_string(*job.pid));
    printer.line("immediate reason", job.reason);
  }
  if (!job.lastEnding) {
    printer.line("last exit code", "(never exited)");
  } else {
    printer.line(job.lastEnding->signalled ? "last terminating signal" : "last exit code",
                 exitText(*job.lastEnding));
  }
  printer.gap();
}

std::string propertiesText(const JobDefinition& definition, PrintStyle style) {
  std::string text;
  if (definition.keepAlive) text += "keepalive | ";
  if (definition.runAtLoad) text += "runatload | ";
  if (definition.abandonProcessGroup) text += "abandon process group | ";
  text += "inferred program";
  if (style == PrintStyle::Managed) text += " | managed LWCR | has LWCR";
  return text;
}

}  // namespace

std::string printedJob(const Job& job, std::uint32_t userID, PrintStyle style) {
  const auto domain = domainName(userID);
  Printer printer;
  printer.raw(domain + "/" + job.definition.label + " = {\n");
  printer.line("active count", job.pid ? "1" : "0");
  printer.line("path", job.definition.path);
  printer.line("type", "LaunchAgent");
  printer.line("state", stateText(job));
  printer.gap();
  printProgram(printer, job.definition);
  printEnvironment(printer, job.definition);
  if (style == PrintStyle::Managed) printConstraint(printer);
  printRun(printer, job, domain);
  printer.line("spawn type", "daemon (3)");
  printer.gap();
  printer.line("properties", propertiesText(job.definition, style));
  printer.raw("}\n");
  return printer.text;
}

std::string printedDomain(const JobTable& jobs, std::uint32_t userID) {
  Printer printer;
  printer.raw(domainName(userID) + " = {\n");
  printer.line("type", "login");
  printer.gap();
  printer.open("services");
  for (const auto* job : jobs.all()) {
    const auto pid = job->pid ? std::to_string(*job->pid) : "0";
    const auto exit = job->lastEnding && !job->lastEnding->signalled ? std::to_string(job->lastEnding->number)
                                                                     : std::string("-");
    printer.inner(pid + "\t" + exit + "\t" + job->definition.label);
  }
  printer.raw("\t}\n}\n");
  return printer.text;
}

}  // namespace tamo::stage
