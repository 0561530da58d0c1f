#include "stage/launchd/job_print.hpp"

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

/// In launchd's words, which tell a kept job that waits for its next start from one that nobody has asked for.
std::string_view stateText(const Job& job) {
  if (job.pid) return "running";
  return job.state == Job::State::Scheduled ? "spawn scheduled" : "not running";
}

/// launchd has a word for the one status that it gives itself to what it could not start.
std::string exitText(const Ending& ending) {
  const auto number = std::to_string(ending.number);
  if (ending.signalled) return std::string(strsignal(ending.number)) + ": " + number;
  return ending.number == 78 ? number + ": EX_CONFIG" : number;
}

/// A job of service management is known by what handed it in, not by a file, and by the program's place in the
/// bundle that it was handed in from.
void printOrigin(Printer& printer, const Job& job, PrintStyle style) {
  const bool submitted = job.definition.submitted && style == PrintStyle::Newest;
  printer.line("path", submitted ? "(submitted by smd.1)" : job.definition.path);
  printer.line("type", submitted ? "Submitted" : "LaunchAgent");
  if (submitted) printer.line("managed_by", "com.apple.xpc.ServiceManagement");
  printer.line("state", stateText(job));
  printer.gap();
}

void printProgram(Printer& printer, const JobDefinition& definition, PrintStyle style) {
  if (style == PrintStyle::Newest && definition.submitted && definition.bundleProgram) {
    printer.line("program identifier", *definition.bundleProgram + " (mode: 2)");
  } else {
    printer.line("program", definition.program);
  }
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

/// Signed code of service management is held to who signed it; any other to the code itself, with an array that
/// launchd closes on the line of its last element.
void printConstraint(Printer& printer, const JobDefinition& definition) {
  printer.open("LWCR");
  printer.inner("\"reqs\" => {");
  if (definition.submitted) {
    printer.inner("\t\"signing-identifier\" => \"" + definition.label + "\"");
    printer.inner("\t\"validation-category\" => 6");
    printer.inner("\t\"team-identifier\" => \"STAGE00000\"");
  } else {
    printer.inner("\t\"cdhash\" => {");
    printer.inner("\t\t\"$in\" => [");
    printer.inner("\t\t\t0 = \t\t\t\t]");
    printer.inner("\t}");
  }
  printer.inner("}");
  printer.inner("\"vers\" => 1");
  printer.inner("\"comp\" => 1");
  printer.inner("\"ccat\" => 0");
  printer.close();
}

/// The pid has its line only while there is a process, and stands behind the constraint: a reader that loses count of
/// the blocks before it sees no pid.
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
  if (style == PrintStyle::Newest) text += " | managed LWCR | has LWCR";
  return text;
}

}  // namespace

/// The order of the lines is part of what is played. The companion counts blocks on its way to the pid, so a block in
/// front of it that is opened in a new way is what a rehearsal has to show.
std::string printedJob(const Job& job, std::uint32_t userID, PrintStyle style) {
  const auto domain = domainName(userID);
  Printer printer;
  printer.raw(domain + "/" + job.definition.label + " = {\n");
  printer.line("active count", job.pid ? "1" : "0");
  printOrigin(printer, job, style);
  printProgram(printer, job.definition, style);
  printEnvironment(printer, job.definition);
  if (style == PrintStyle::Newest) printConstraint(printer, job.definition);
  printRun(printer, job, domain);
  printer.line("spawn type", "daemon (3)");
  printer.gap();
  printer.line("properties", propertiesText(job.definition, style));
  printer.raw("}\n");
  return printer.text;
}

/// Only the services: the print of a real domain is long, and nothing here reads it but people.
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
