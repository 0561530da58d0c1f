#pragma once

#include <set>
#include <string>
#include <vector>

#include "fakes/fake_clock.hpp"
#include "fakes/fake_files.hpp"
#include "platform/user_files.hpp"

namespace tamo::fakes {

/// A user's rights and Trash over the files in memory. Everything that is there can be trashed, and every
/// folder can be written to, unless the test says otherwise; the Trash keeps paths, not bytes. Notes "user
/// files: writable P" and "user files: trash P".
class FakeUserFiles final : public platform::UserFiles {
 public:
  FakeUserFiles(Ledger& ledger, const FakeClock& clock, FakeFiles& files)
      : ledger_(ledger), clock_(clock), files_(files) {}

  std::set<std::string> unwritable;
  std::set<std::string> untrashable;
  /// Where the items lay that are in the Trash now, in the order of their arrival.
  std::vector<std::string> trashed;

  [[nodiscard]] bool isWritable(const std::string& path) const override {
    note("writable " + path);
    return !unwritable.contains(path);
  }
  [[nodiscard]] bool moveToTrash(const std::string& path) override {
    note("trash " + path);
    if (untrashable.contains(path) || !takeAway(path)) return false;
    trashed.push_back(path);
    return true;
  }

 private:
  void note(const std::string& deed) const { ledger_.note(clock_.monotonicNow(), "user files: " + deed); }

  /// Whether anything was there to be taken.
  bool takeAway(const std::string& path) {
    const auto within = [&path](const std::string& item) {
      return item == path || item.starts_with(path + "/");
    };
    const auto files = std::erase_if(files_.contents, [&](const auto& file) { return within(file.first); });
    return files + std::erase_if(files_.directories, within) > 0;
  }

  Ledger& ledger_;
  const FakeClock& clock_;
  FakeFiles& files_;
};

}  // namespace tamo::fakes
