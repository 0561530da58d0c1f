#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "fakes/fake_clock.hpp"
#include "platform/stage/journal.hpp"
#include "stage/picture/journal_reading.hpp"
#include "temporary_stage.hpp"

namespace tamo::stage {

/// A stage with an empty journal, and what fakes need.
class NotingTest : public ::testing::Test {
 protected:
  /// "WORD TEXT TEXT…" of each moment.
  [[nodiscard]] std::vector<std::string> noted() const {
    std::vector<std::string> lines;
    for (const auto& moment : readJournal(stage.read("/.stage/journal")).moments)
      lines.push_back(moment.word + (moment.texts.empty() ? "" : " ") + textsFrom(moment, 0));
    return lines;
  }

  TemporaryStage stage;
  Journal journal = emptyJournal(stage);
  fakes::Ledger ledger;
  fakes::FakeClock clock{ledger};

 private:
  static Journal emptyJournal(const TemporaryStage& stage) {
    stage.write("/.stage/journal", "");
    return Journal(stage.root);
  }
};

}  // namespace tamo::stage
