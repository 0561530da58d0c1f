#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hardstop/hard_stop.hpp"

namespace tamo::HardStop {

using Trace = std::vector<std::string>;

/// A hard stop played on virtual time, which passes in sleeps only, with everything that it asks and does
/// written down. The process lives, leads its own group and survives the kill unless a test says otherwise.
class HardStopRig : public ::testing::Test {
 protected:
  const Seen first{4242, 1000, 4242, false};
  std::optional<Seen> process = first;
  std::optional<std::string> reason;
  bool calledOff = false;
  Trace trace;
  std::chrono::nanoseconds time{0};
  std::function<void()> onLook = [] {};
  std::function<void()> onSpare = [] {};
  std::function<void()> onSignal = [] {};
  Operations operations = scripted();

  /// What happens in the sleep that reaches the moment.
  void at(std::chrono::nanoseconds moment, std::function<void()> event) {
    events_.emplace(moment, std::move(event));
  }
  void goneAt(std::chrono::nanoseconds moment) {
    at(moment, [this] { process.reset(); });
  }
  void calledOffAt(std::chrono::nanoseconds moment) {
    at(moment, [this] { calledOff = true; });
  }
  /// Shorter waits, for traces that are written out.
  void waits100Milliseconds() {
    operations.grace = operations.reap = operations.spareWait = std::chrono::milliseconds(100);
  }
  [[nodiscard]] auto count(const std::string& deed) const {
    return std::count(trace.begin(), trace.end(), deed);
  }

 private:
  Operations scripted();
  void sleep(std::chrono::nanoseconds duration);

  std::multimap<std::chrono::nanoseconds, std::function<void()>> events_;
};

inline Operations HardStopRig::scripted() {
  return {
      .grace = grace,
      .poll = poll,
      .reap = reap,
      .spareWait = spareWait,
      .ownGroup = 500,
      .look =
          [this](std::int32_t pid) {
            trace.push_back("look " + std::to_string(pid));
            onLook();
            return process;
          },
      .spare =
          [this] {
            trace.push_back("spare?");
            onSpare();
            return reason;
          },
      .cancelled =
          [this] {
            trace.push_back("cancelled?");
            return calledOff;
          },
      .signal =
          [this](std::int32_t target, bool isGroup) {
            trace.push_back(std::string("kill ") + (isGroup ? "group " : "") + std::to_string(target));
            onSignal();
          },
      .sleep = [this](std::chrono::nanoseconds duration) { sleep(duration); },
      .now =
          [this] {
            trace.push_back("now");
            return time;
          },
  };
}

inline void HardStopRig::sleep(std::chrono::nanoseconds duration) {
  trace.push_back("sleep " +
                  std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(duration).count()) +
                  " ms");
  time += duration;
  while (!events_.empty() && events_.begin()->first <= time) {
    const auto event = std::move(events_.begin()->second);
    events_.erase(events_.begin());
    event();
  }
}

}  // namespace tamo::HardStop
