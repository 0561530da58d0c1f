#include "stage/launchd/service_target.hpp"

#include <gtest/gtest.h>

namespace tamo::stage {
namespace {

TEST(ServiceTargetTest, AJobOfTheUserIsTakenApart) {
  const auto target = serviceTarget("gui/501/a.b");
  ASSERT_TRUE(target);
  EXPECT_TRUE(target->isOfUser(501));
  EXPECT_FALSE(target->isOfUser(502));
  EXPECT_EQ(target->label, "a.b");
  EXPECT_EQ(target->domainText(), "user gui: 501");
}

TEST(ServiceTargetTest, ADomainAloneHasNoLabel) {
  EXPECT_EQ(serviceTarget("gui/501")->label, "");
  EXPECT_EQ(serviceTarget("gui/501/")->label, "");
}

TEST(ServiceTargetTest, TheSystemHasNoNumber) {
  const auto target = serviceTarget("system/a.b");
  EXPECT_EQ(target->domainText(), "system");
  EXPECT_EQ(target->label, "a.b");
  EXPECT_FALSE(target->isOfUser(0));
}

TEST(ServiceTargetTest, TheUsersOtherDomainIsNotTheGraphicalOne) {
  EXPECT_FALSE(serviceTarget("user/501/a.b")->isOfUser(501));
}

TEST(ServiceTargetTest, WhatNamesNoDomainIsNone) {
  for (const auto* text : {"", "a.b", "gui", "gui/", "gui/abc/x", "gui//x", "gui/-1/x"})
    EXPECT_FALSE(serviceTarget(text)) << text;
}

}  // namespace
}  // namespace tamo::stage
