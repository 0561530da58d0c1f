#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/stage/launchd_wire.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::contract {

/// A launchd that speaks the real one's form over a real socket and answers one question after the other as
/// the test says. It keeps no job and no state, and answers nothing while it works.
class FakeLaunchd {
 public:
  using Answering = std::function<stage::LaunchdAnswer(const std::vector<std::string>&)>;

  FakeLaunchd(const stage::StageRoot& root, Answering answering);
  FakeLaunchd(const FakeLaunchd&) = delete;
  FakeLaunchd& operator=(const FakeLaunchd&) = delete;
  /// Ends it; every question that was asked before has been answered.
  ~FakeLaunchd();

 private:
  void serve(int listener);

  const stage::StageRoot root_;
  Answering answering_;
  std::thread thread_;
};

}  // namespace tamo::contract
