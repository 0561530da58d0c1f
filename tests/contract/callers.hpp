#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include "platform/posix/descriptor.hpp"

/// What a listener sees of those who call it.
namespace tamo::contract {

/// The next caller in a listener's queue; owns nothing when nobody waits there.
inline platform::Descriptor nextCaller(const platform::Descriptor& listener) {
  ::fcntl(listener.get(), F_SETFL, O_NONBLOCK);
  platform::Descriptor caller(::accept(listener.get(), nullptr, nullptr));
  if (caller) ::fcntl(caller.get(), F_SETFL, O_NONBLOCK);
  return caller;
}

/// There was one caller, who said nothing and has hung up.
inline void expectOneSilentCaller(const platform::Descriptor& listener) {
  const auto caller = nextCaller(listener);
  ASSERT_TRUE(caller);
  char byte = 0;
  EXPECT_EQ(::recv(caller.get(), &byte, 1, 0), 0) << "a byte came, or the line is still open";
  EXPECT_FALSE(nextCaller(listener)) << "a second call";
}

}  // namespace tamo::contract
