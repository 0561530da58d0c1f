#include "stage/launchd/job_table.hpp"

#include <algorithm>
#include <utility>

namespace tamo::stage {
namespace {

/// What launchd notes for a job whose program could not be started.
constexpr int kCannotStart = 78;

void answerAll(std::vector<JobTable::Reply>& waiting, const LaunchdAnswer& answer) {
  // Taken out first: an answer may lead to the next question.
  const auto replies = std::exchange(waiting, {});
  for (const auto& reply : replies)
    reply(answer);
}

}  // namespace

/// Refused where a job of that label is loaded, as launchd refuses it: so a changed definition needs a
/// bootout first.
void JobTable::bootstrap(const JobDefinition& definition, Time now, const Reply& reply) {
  if (jobs_.contains(definition.label))
    return reply({.status = 5, .errors = "Bootstrap failed: 5: Input/output error\n"});
  auto& entry = jobs_[definition.label];
  entry.definition = definition;
  if (definition.runAtLoad || definition.keepAlive) start(entry, "speculative", now);
  reply({});
}

/// The answer comes when the process is gone. Whoever waits for a restart of the job learns at once that
/// there will be none.
void JobTable::bootout(const std::string& label, Time now, const Reply& reply) {
  const auto found = jobs_.find(label);
  if (found == jobs_.end()) return reply({.status = 3, .errors = "Boot-out failed: 3: No such process\n"});
  auto& entry = found->second;
  if (!entry.pid) {
    remove(label);
    return reply({});
  }
  if (!entry.removing)
    answerAll(entry.waiting,
              {.status = 3, .errors = "Could not kickstart service \"" + label + "\": 3: No such process\n"});
  entry.removing = true;
  entry.waiting.push_back(reply);
  stop(entry, now);
}

/// Answered when the new process runs, which after a kill is as late as the old one ends.
void JobTable::kickstart(const std::string& label, bool kill, Time now, const Reply& reply) {
  auto& entry = jobs_.at(label);
  if (entry.removing)
    return reply(
        {.status = 37,
         .errors = "Could not kickstart service \"" + label + "\": 37: Operation already in progress\n"});
  if (entry.pid && !kill) return reply({});
  entry.waiting.push_back(reply);
  if (entry.pid) return stop(entry, now);
  start(entry, "non-ipc demand", now);
  answerRestart(entry);
}

const Job* JobTable::find(const std::string& label) const {
  const auto found = jobs_.find(label);
  return found == jobs_.end() ? nullptr : &found->second;
}

std::vector<const Job*> JobTable::all() const {
  std::vector<const Job*> jobs;
  jobs.reserve(jobs_.size());
  for (const auto& [label, entry] : jobs_)
    jobs.push_back(&entry);
  return jobs;
}

/// While the process is a zombie its pid still names its group, and can name no other one.
void JobTable::dying(pid_t pid) {
  const auto* entry = ofProcess(pid);
  if (entry != nullptr && !entry->definition.abandonProcessGroup) processes_.killGroup(pid);
}

void JobTable::ended(pid_t pid, Ending ending, Time now) {
  auto* entry = ofProcess(pid);
  if (entry == nullptr) return;
  entry->pid.reset();
  entry->lastEnding = ending;
  entry->deadline.reset();
  processGone(*entry, now);
}

/// What was asked for while it ran decides what comes next: the removal, the restart, or, unasked, the
/// throttled start of a job that is kept alive.
void JobTable::processGone(Entry& entry, Time now) {
  if (entry.removing) {
    // The answers lie in the entry, which goes first: whoever is answered finds no job any more.
    auto waiting = std::move(entry.waiting);
    remove(entry.definition.label);
    return answerAll(waiting, {});
  }
  if (entry.state == Job::State::Stopping) {
    start(entry, "non-ipc demand", now);
    return answerRestart(entry);
  }
  entry.state = Job::State::Waiting;
  if (!entry.definition.keepAlive) return;
  entry.state = Job::State::Scheduled;
  // Counted from the start, so a job that has run for long is started anew at once.
  entry.deadline = std::max(now, entry.started + entry.definition.throttle);
}

/// SIGKILL goes to the process alone, and once, for its deadline is gone then. What is left of the group is ended when
/// the process is seen dead.
void JobTable::tick(Time now) {
  for (auto& [label, entry] : jobs_) {
    if (!entry.deadline || now < *entry.deadline) continue;
    entry.deadline.reset();
    if (entry.state == Job::State::Scheduled) {
      start(entry, "speculative", now);
    } else if (entry.pid) {
      processes_.kill(*entry.pid);
    }
  }
}

std::optional<JobTable::Time> JobTable::nextDeadline() const {
  std::optional<Time> next;
  for (const auto& [label, entry] : jobs_)
    if (entry.deadline && (!next || *entry.deadline < *next)) next = entry.deadline;
  return next;
}

/// A start that fails counts as a run that ended, and is tried again no sooner than any other.
void JobTable::start(Entry& entry, const std::string& reason, Time now) {
  entry.deadline.reset();
  entry.started = now;
  entry.reason = reason;
  ++entry.runs;
  entry.pid = processes_.start(entry.definition);
  entry.state = Job::State::Running;
  if (entry.pid) return;
  entry.lastEnding = Ending{.number = kCannotStart};
  entry.state = entry.definition.keepAlive ? Job::State::Scheduled : Job::State::Waiting;
  if (entry.definition.keepAlive) entry.deadline = now + entry.definition.throttle;
}

/// No exit timeout means that the job may take as long as it likes. A second stop does not begin the time
/// anew.
void JobTable::stop(Entry& entry, Time now) {
  if (entry.state == Job::State::Stopping) return;
  entry.state = Job::State::Stopping;
  if (entry.definition.exitTimeout > std::chrono::seconds(0))
    entry.deadline = now + entry.definition.exitTimeout;
  processes_.terminate(*entry.pid);
}

void JobTable::answerRestart(Entry& entry) {
  if (entry.pid) return answerAll(entry.waiting, {});
  answerAll(entry.waiting, {.status = kCannotStart,
                            .errors = "Could not kickstart service \"" + entry.definition.label +
                                      "\": 78: Function not implemented\n"});
}

/// By a copy of the label: mostly it is the entry's own, which goes with the entry.
void JobTable::remove(const std::string& label) {
  jobs_.erase(std::string(label));
}

/// By the pid, because orphans that were adopted end here as well and are no job's.
JobTable::Entry* JobTable::ofProcess(pid_t pid) {
  for (auto& [label, entry] : jobs_)
    if (entry.pid == pid) return &entry;
  return nullptr;
}

}  // namespace tamo::stage
