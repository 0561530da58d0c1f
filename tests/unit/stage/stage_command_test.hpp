#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "stage/control/tamo_stage.hpp"
#include "temporary_stage.hpp"

namespace tamo::stage {

/// A stage that counts as laid, and what tamo-stage said last.
class StageCommandTest : public ::testing::Test {
 protected:
  StageCommandTest() { stage.write("/.stage/laid", ""); }

  /// The exit status.
  int run(const std::vector<std::string>& words) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    const int status = runTamoStage(words);
    output = ::testing::internal::GetCapturedStdout();
    errors = ::testing::internal::GetCapturedStderr();
    return status;
  }

  TemporaryStage stage;
  std::string output;
  std::string errors;
};

}  // namespace tamo::stage
