#include "stage/launchd/service_records.hpp"

#include <gtest/gtest.h>

#include "temporary_stage.hpp"

namespace tamo::stage {
namespace {

TEST(ServiceRecordsTest, ARecordIsReadAsItWasWritten) {
  const TemporaryStage stage;
  const ServiceRecord record{.status = 2, .label = "a.b", .bundle = "/Apps/With Blank.app"};
  ASSERT_TRUE(writeRecord(stage.root, "a.b.plist", record));
  const auto read = readRecord(stage.root, "a.b.plist");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->status, 2);
  EXPECT_EQ(read->label, "a.b");
  EXPECT_EQ(read->bundle, "/Apps/With Blank.app");
  EXPECT_EQ(recordedServices(stage.root), std::vector<std::string>{"a.b.plist"});
}

TEST(ServiceRecordsTest, WhatWasNeverRegisteredHasNone) {
  const TemporaryStage stage;
  EXPECT_FALSE(readRecord(stage.root, "a.b.plist"));
  EXPECT_TRUE(recordedServices(stage.root).empty());
}

TEST(ServiceRecordsTest, ANameThatLeavesTheFolderHasNone) {
  const TemporaryStage stage;
  for (const auto* name : {"", "..", "../laid", ".hidden", "a/b"}) {
    EXPECT_FALSE(writeRecord(stage.root, name, {})) << name;
    EXPECT_FALSE(readRecord(stage.root, name)) << name;
  }
}

}  // namespace
}  // namespace tamo::stage
