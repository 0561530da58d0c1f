#include "platform/macos/mac_user_files.hpp"

#include "platform/macos/foundation_values.hpp"
#include "platform/posix/posix_files.hpp"

namespace tamo::macos {

bool MacUserFiles::isWritable(const std::string& path) const {
  return platform::posix::isWritable(path);
}

/// The system gives it another name there when its own is taken. Which one, nobody asks, and why it failed
/// neither.
bool MacUserFiles::moveToTrash(const std::string& path) {
  @autoreleasepool {
    NSURL* url = fileURL(path);
    if (url == nil) return false;
    return [NSFileManager.defaultManager trashItemAtURL:url resultingItemURL:nil error:nil];
  }
}

}  // namespace tamo::macos
