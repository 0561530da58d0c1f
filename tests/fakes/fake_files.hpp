#pragma once

#include <functional>
#include <map>
#include <set>

#include "fakes/fake_clock.hpp"
#include "platform/files.hpp"

namespace tamo::fakes {

/// Files in memory: paths and bytes, no folders of their own. Notes "files: write P", "files: create
/// directories P", "files: remove P", "files: open P", "files: close P"; reads are noted as "files: read P"
/// and "files: exists P".
class FakeFiles final : public platform::Files {
 public:
  FakeFiles(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  std::map<std::string, std::string> contents;
  std::set<std::string> directories;
  /// Where a path leads when links are resolved; a path that is not listed leads to itself.
  std::map<std::string, std::string> resolved;
  std::optional<std::string> temporary = "/tmp/of-the-user/";
  /// What happens meanwhile, before a file is written.
  std::function<void()> beforeWriting = [] {};
  bool failsToWrite = false;
  bool failsToOpen = false;
  bool failsToRead = false;
  bool failsToRemove = false;
  bool failsToCreateDirectories = false;

  /// Adds bytes to an open output file, as a tool that was given its descriptor does.
  void appendTo(int descriptor, std::string_view bytes);

  [[nodiscard]] bool exists(const std::string& path) const override;
  [[nodiscard]] std::optional<std::string> readWhole(const std::string& path) const override;
  [[nodiscard]] std::string resolvedPath(const std::string& path) const override;
  [[nodiscard]] bool writeAtomically(const std::string& path, std::string_view bytes) override;
  [[nodiscard]] bool createDirectories(const std::string& path) override;
  bool remove(const std::string& path) override;
  [[nodiscard]] std::unique_ptr<platform::OutputFile> openForWriting(const std::string& path) override;
  [[nodiscard]] std::optional<std::string> temporaryDirectory() const override { return temporary; }

 private:
  class Output;
  void note(const std::string& deed) const { ledger_.note(clock_.monotonicNow(), "files: " + deed); }

  Ledger& ledger_;
  const FakeClock& clock_;
  int nextDescriptor_ = 1000;
  std::map<int, std::string> open_;
};

}  // namespace tamo::fakes
