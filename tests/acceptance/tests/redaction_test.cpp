#include "acceptance/redaction.hpp"

#include <gtest/gtest.h>

namespace tamo::acceptance {
namespace {

const Identity anna{.home = "/Users/anna",
                    .userName = "anna",
                    .fullName = "Anna O'Hara",
                    .hostNames = {"annas-mac.local", "Annas Mac"},
                    .serial = "C02XX1234567",
                    .temporary = "/var/folders/ab/cdef/T/"};

std::string of(const std::string& text) {
  return redacted(text, secretsOf(anna));
}

TEST(RedactionTest, NothingThatNamesThePersonOrTheMachineIsLeft) {
  EXPECT_EQ(of("/Users/anna/Downloads/Tamo.app"), "~/Downloads/Tamo.app");
  EXPECT_EQ(of("started by anna on Annas-Mac.local"), "started by (user) on (host)");
  EXPECT_EQ(of("annas-mac and Annas Mac"), "(host) and (host)");
  EXPECT_EQ(of("Anna O'Hara, serial C02XX1234567."), "(name), serial (serial).");
  EXPECT_EQ(of("/var/folders/ab/cdef/T/studio.pell.tamo.core.job.lock"),
            "(temporary)/studio.pell.tamo.core.job.lock");
  EXPECT_EQ(of("ANNA=anna_x"), "(user)=(user)_x");
}

TEST(RedactionTest, AWordThatOnlyHoldsTheNameStays) {
  EXPECT_EQ(of("Hannah, annals, annabel"), "Hannah, annals, annabel");
  EXPECT_EQ(of("/Users/annabel"), "/Users/annabel");
}

TEST(RedactionTest, WhatIsNotKnownTakesNothingOut) {
  EXPECT_EQ(redacted("a b", secretsOf({.home = "/", .userName = "", .fullName = "", .temporary = "/tmp/"})),
            "a b");
  EXPECT_EQ(redacted("/tmp/x", secretsOf({.home = "", .userName = "", .fullName = "", .temporary = "/tmp/"})),
            "/tmp/x");
}

}  // namespace
}  // namespace tamo::acceptance
