#pragma once

#include <string>

#include "platform/posix/descriptor.hpp"

namespace tamo::acceptance {

/// A stranger that holds the job lock as long as this object lives.
class LockHolder {
 public:
  explicit LockHolder(const std::string& lockFile);
  void release() { file_.close(); }

 private:
  platform::Descriptor file_;
};

}  // namespace tamo::acceptance
