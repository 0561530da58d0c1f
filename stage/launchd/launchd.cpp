#include "stage/launchd/launchd.hpp"

#include <algorithm>
#include <fstream>

#include "stage/common/exit_status.hpp"
#include "stage/launchd/job_file.hpp"
#include "stage/launchd/job_print.hpp"

namespace tamo::stage {
namespace {

/// The statuses that launchctl exits with on a Mac.
constexpr int kUnknownDomain = 112;
constexpr int kUnknownService = 113;
constexpr int kWrongDomain = 125;

const LaunchdAnswer kNoTarget = {.status = kUsage, .errors = "Unrecognized target specifier.\n"};
const LaunchdAnswer kNoQuestion = {.status = kUsage, .errors = "launchd was asked what it doesn't know.\n"};

LaunchdAnswer wrongDomain(const std::string& operation) {
  return {.status = kWrongDomain,
          .errors = operation + " failed: 125: Domain does not support specified action\n"};
}

}  // namespace

/// A shutdown is answered last of all, by whoever runs the loop, so that who waits for it finds nothing
/// running.
void Launchd::ask(const std::vector<std::string>& words, Time now, const Reply& reply) {
  const Question question{.words = words, .now = now, .reply = reply};
  const auto verb = words.empty() ? std::string() : words.front();
  if (verb == "print" && words.size() == 2) return print(question);
  if (verb == "kickstart") return kickstart(question);
  if (verb == "bootstrap" && words.size() == 3) return bootstrap(question);
  if (verb == "bootout" && words.size() == 2) return bootout(question);
  if (verb == "open-login-items") return openLoginItems(question);
  if (verb == "shutdown") {
    shutdown_ = reply;
    return;
  }
  // Whoever asks waits for an answer, so what is no question has one, too.
  if (!askServices(question)) reply(kNoQuestion);
}

void Launchd::print(const Question& question) {
  const auto& text = question.words[1];
  const auto target = serviceTarget(text);
  if (target && target->label.empty() && target->isOfUser(root_.userID()))
    return question.reply({.output = printedDomain(jobs_, root_.userID())});
  const auto job = known(question, text, true);
  if (!job) return;
  // Read at each print, so that one Core can be shown in both forms.
  const auto style = root_.setting("print-style") == "older" ? PrintStyle::Older : PrintStyle::Newest;
  question.reply({.output = printedJob(*jobs_.find(job->label), root_.userID(), style)});
}

void Launchd::kickstart(const Question& question) {
  const bool kill = question.words.size() == 3 && question.words[1] == "-k";
  if (question.words.size() != (kill ? 3U : 2U)) return question.reply(kNoQuestion);
  const auto job = known(question, question.words.back(), false);
  if (job) jobs_.kickstart(job->label, kill, question.now, question.reply);
}

void Launchd::bootstrap(const Question& question) {
  const auto target = serviceTarget(question.words[1]);
  if (!target || !target->label.empty()) return question.reply(kNoTarget);
  if (!target->isOfUser(root_.userID())) return question.reply(wrongDomain("Bootstrap"));
  const auto definition = jobDefinitionAt(root_, question.words[2]);
  if (!definition)
    return question.reply({.status = 5, .errors = "Bootstrap failed: 5: Input/output error\n"});
  jobs_.bootstrap(*definition, question.now, question.reply);
}

/// A service is named here, never a whole domain: to end a stage is a question of its own.
void Launchd::bootout(const Question& question) {
  const auto target = serviceTarget(question.words[1]);
  if (!target || target->label.empty()) return question.reply(kNoTarget);
  if (!target->isOfUser(root_.userID())) return question.reply(wrongDomain("Boot-out"));
  jobs_.bootout(target->label, question.now, question.reply);
}

/// There are no settings to open. The file shows a rehearsal that the user would see them.
void Launchd::openLoginItems(const Question& question) {
  std::ofstream(root_.control("login-items-opened"), std::ios::app) << "opened\n";
  question.reply({});
}

bool Launchd::askServices(const Question& question) {
  const auto& words = question.words;
  const auto is = [&words](const std::string& verb, std::size_t count) {
    return !words.empty() && words[0] == verb && words.size() == count;
  };
  if (is("service-status", 2)) {
    question.reply(services_.status(words[1]));
  } else if (is("service-register", 3)) {
    question.reply(services_.registerAgent(words[1], words[2], question.now));
  } else if (is("service-unregister", 2)) {
    services_.unregisterAgent(words[1], question.now, question.reply);
  } else if (is("approve", 1)) {
    services_.approve(question.now);
    question.reply({});
  } else {
    return false;
  }
  return true;
}

/// A print that finds nothing says one line more than any other question that does, as a real launchd's answers show.
std::optional<ServiceTarget> Launchd::known(const Question& question, const std::string& text,
                                            bool badRequest) {
  const std::string opening = badRequest ? "Bad request.\n" : "";
  auto target = serviceTarget(text);
  if (!target) {
    question.reply(kNoTarget);
    return std::nullopt;
  }
  const bool ours = target->isOfUser(root_.userID());
  // The system's domain exists on every Mac; the stage has nothing in it.
  if (!ours && target->kind != "system") {
    question.reply({.status = kUnknownDomain,
                    .errors = opening + "Could not find domain for " + target->domainText() + "\n"});
    return std::nullopt;
  }
  if (ours && jobs_.find(target->label) != nullptr) return target;
  if (target->label.empty()) {
    question.reply(kNoTarget);
    return std::nullopt;
  }
  question.reply({.status = kUnknownService,
                  .errors = opening + "Could not find service \"" + target->label + "\" in domain for " +
                            target->domainText() + "\n"});
  return std::nullopt;
}

void Launchd::tick(Time now) {
  jobs_.tick(now);
  services_.tick(now);
}

/// The loop sleeps until then: a job that is throttled, or a timeout that runs, has to be met without a question.
std::optional<Launchd::Time> Launchd::nextDeadline() const {
  const auto job = jobs_.nextDeadline();
  const auto service = services_.nextDeadline();
  if (!job || !service) return job ? job : service;
  return std::min(*job, *service);
}

}  // namespace tamo::stage
