#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

/// A test that lets the whole process end gives it the status of that end, which may well be that of a success.
/// This is a part of every test program and makes it a failure.
namespace {

const pid_t self = ::getpid();

void failInATest() {
  const auto* test = testing::UnitTest::GetInstance()->current_test_info();
  // The child of a death test is forked in the middle of one and meant to end.
  if (test == nullptr || ::getpid() != self) return;
  std::fprintf(stderr, "%s.%s ended the process\n", test->test_suite_name(), test->name());
  ::_exit(1);
}

bool watch() {
  // What is asked at the end has to be there at least as long.
  static_cast<void>(testing::UnitTest::GetInstance());
  return std::atexit(failInATest) == 0;
}

[[maybe_unused]] const bool watches = watch();

}  // namespace
