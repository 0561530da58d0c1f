#pragma once

#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.hpp"
#include "platform/posix/descriptor.hpp"

/// The suites of the platform interfaces run on every backend that this host has. A suite asks the interface
/// under test and nothing else; what it needs around it, an item laid on the disk or a process to look at, it
/// makes with the host's own calls.
namespace tamo::contract {

/// One backend, fresh for one test. Destroying it removes what the test left on the disk.
class Backend {
 public:
  virtual ~Backend() = default;

  [[nodiscard]] virtual const platform::Platform& platform() const = 0;

  /// An empty folder of the test's own, as the interfaces name it; short enough for a socket's path.
  [[nodiscard]] virtual std::string folder() const = 0;

  /// The host's path of an item below folder().
  [[nodiscard]] virtual std::string host(const std::string& path) const = 0;

  /// A listener at a path of any length; it stops listening when the descriptor is closed.
  [[nodiscard]] virtual platform::Descriptor listen(const std::string& path) const = 0;

  /// Makes the terminate request return, so that a test outlives it.
  virtual void outliveTerminate() = 0;

  /// Sends URLs to this process as another program would.
  virtual void sendURLs(const std::vector<std::string>& urls) const = 0;

  /// Whether the kernel tells of a process that has exited and waits to be reaped; else it is absent.
  [[nodiscard]] virtual bool seesZombies() const { return true; }
};

struct BackendKind {
  const char* name;
  std::function<std::unique_ptr<Backend>()> make;
};
void PrintTo(const BackendKind& kind, std::ostream* stream);

/// Every backend of this host.
[[nodiscard]] std::vector<BackendKind> backends();

/// The base of every suite.
class Contract : public ::testing::TestWithParam<BackendKind> {
 protected:
  [[nodiscard]] std::string path(std::string_view name) const {
    return backend->folder() + "/" + std::string(name);
  }
  [[nodiscard]] std::string host(std::string_view name) const { return backend->host(path(name)); }

  /// Lays a file with the host's calls, and reads one.
  void lay(std::string_view name, std::string_view bytes) const;
  [[nodiscard]] std::string contentsOf(std::string_view name) const;

  const std::unique_ptr<Backend> backend = GetParam().make();
  const platform::Platform& platform = backend->platform();
};

/// Looks again every few milliseconds, for what other processes and threads bring about. False when it has
/// not come true after five seconds.
[[nodiscard]] bool eventually(const std::function<bool()>& isTrue);

[[nodiscard]] std::string kindName(const ::testing::TestParamInfo<BackendKind>& info);

}  // namespace tamo::contract

/// Runs a suite on every backend.
#define TAMO_CONTRACT(suite)                                                             \
  INSTANTIATE_TEST_SUITE_P(On, suite, ::testing::ValuesIn(::tamo::contract::backends()), \
                           ::tamo::contract::kindName)
