#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "app/outcome_record.hpp"
#include "platform/bundles.hpp"
#include "platform/clock.hpp"
#include "platform/files.hpp"
#include "platform/kernel_processes.hpp"
#include "platform/log.hpp"
#include "platform/user.hpp"

namespace tamo {

/// The receipt's bytes: one JSON object with a key a line, keys in byte order, as the Mac's own serialiser
/// prints it.
[[nodiscard]] std::string receiptJson(const OutcomeRecord& record);

/// ISO 8601 internet date-time in UTC with whole seconds, any fraction cut off: "2026-11-16T00:05:09Z".
[[nodiscard]] std::string internetDateTime(std::chrono::system_clock::time_point time);

/// Leaves a receipt of an action (the move and a refused one have none) for the product's other programs: a
/// file of its own per run, named by the process id, under the real home. Main thread.
class ReceiptWriter {
 public:
  struct Needs {
    const platform::Bundles& bundles;
    const platform::KernelProcesses& kernelProcesses;
    const platform::Clock& clock;
    const platform::User& user;
    platform::Files& files;
    platform::Logger& log;
  };

  explicit ReceiptWriter(Needs needs) : needs_(needs) {}

  /// Adds "bundle", "pid" and "timestamp" to the record and writes it. A failure, a text that is no UTF-8
  /// included, is one log line and nothing more. No password entry, or one without a home, stops the process
  /// (fatal).
  void write(OutcomeRecord& record) const;

 private:
  Needs needs_;
};

}  // namespace tamo
