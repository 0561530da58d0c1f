#include "fakes/fake_files.hpp"

#include <gtest/gtest.h>

namespace tamo::fakes {

class FakeFiles::Output final : public platform::OutputFile {
 public:
  Output(FakeFiles& files, int descriptor) : files_(files), descriptor_(descriptor) {}
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output() override {
    files_.note("close " + files_.open_.at(descriptor_));
    files_.open_.erase(descriptor_);
  }
  [[nodiscard]] int descriptor() const override { return descriptor_; }

 private:
  FakeFiles& files_;
  int descriptor_;
};

void FakeFiles::appendTo(int descriptor, std::string_view bytes) {
  const auto found = open_.find(descriptor);
  if (found == open_.end()) {
    ADD_FAILURE() << "a tool writes to descriptor " << descriptor << ", which is not open";
    return;
  }
  contents[found->second] += bytes;
}

bool FakeFiles::exists(const std::string& path) const {
  note("exists " + path);
  return contents.contains(path) || directories.contains(path);
}

std::optional<std::string> FakeFiles::readWhole(const std::string& path) const {
  note("read " + path);
  const auto found = contents.find(path);
  if (failsToRead || found == contents.end()) return std::nullopt;
  return found->second;
}

std::string FakeFiles::resolvedPath(const std::string& path) const {
  const auto found = resolved.find(path);
  return found == resolved.end() ? path : found->second;
}

bool FakeFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  beforeWriting();
  note("write " + path);
  if (failsToWrite) return false;
  contents[path] = bytes;
  return true;
}

bool FakeFiles::createDirectories(const std::string& path) {
  note("create directories " + path);
  if (failsToCreateDirectories) return false;
  directories.insert(path);
  return true;
}

bool FakeFiles::remove(const std::string& path) {
  note("remove " + path);
  if (failsToRemove) return false;
  const auto within = [&](const std::string& item) { return item == path || item.starts_with(path + "/"); };
  const auto files = std::erase_if(contents, [&](const auto& file) { return within(file.first); });
  return files + std::erase_if(directories, within) > 0;
}

std::unique_ptr<platform::OutputFile> FakeFiles::openForWriting(const std::string& path) {
  note("open " + path);
  if (failsToOpen || !contents.contains(path)) return nullptr;
  const int descriptor = nextDescriptor_++;
  open_[descriptor] = path;
  return std::make_unique<Output>(*this, descriptor);
}

}  // namespace tamo::fakes
